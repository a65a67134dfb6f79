#pragma once

// The published fields of a scan model as the requirements say they are. A scan and a zip publish a fixed
// list of lines each, in its order; between the lists any order may come out. What a cancelled scan was yet
// to publish is lost, but for one count. Lines are those of ScanModelTest::record.

#include "records/Records.h"
#include "system/Paths.h"
#include "tests/support/Files.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velmora::test {

using Lines = std::vector<std::string>;

/// A drop, whose first path says all about what will be found in it: "/FOLDER/FILES-SKIPPED".
struct Drop {
    Paths urls;
    Paths files;
    std::vector<SkippedArchive> skipped;

    static Drop of(const Paths& urls);

    std::string source() const;
};

/// The seconds of a file that a drop found, -1 for some.
double lengthOf(const fs::path& file);

/// The records of those that can be measured.
std::vector<Measured> measuredOf(const Paths& files);

class ReferenceModel {
public:
    /// What is to be published at once.
    Lines ingest(const Drop& drop);
    Lines reset();

    /// Of a zip to `destination` that finds all files, or does not find the first.
    Lines makeZip(const fs::path& destination, bool filesExist);

    /// Takes what was published in a turn of the event loop; false when it may not be published then.
    bool takes(const std::string& line);

    /// Whether everything that is to be published has been.
    bool isQuiet() const;

    /// Whether the last drop's scan was not cancelled.
    bool isScanned() const { return m_scan.has_value(); }

    const Drop& drop() const { return m_drop; }

private:
    /// What one scan or zip publishes while the event loop turns.
    struct Stream {
        Lines lines;
        bool isCancelled = false;
        std::size_t afterCount = 0; ///< of a scan: where its counts while measuring end
    };

    using Positions = std::vector<std::size_t>; ///< by stream: how many lines it has published

    static Stream scanOf(const Drop& drop);
    static std::size_t afterLine(const Stream& stream, std::size_t position, const std::string& line);

    void cancel();
    void add(Stream stream);

    std::vector<Stream> m_streams;
    std::set<Positions> m_possible = {Positions()}; ///< what the lines so far can mean
    std::optional<std::size_t> m_scan;              ///< the stream of the scan that counts
    Drop m_drop;
    int m_files = 0; ///< of the summary
};

} // namespace velmora::test
