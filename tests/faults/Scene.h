#pragma once

// A folder of every kind of source, a scan of it that packs a zip, and what such a scan may and may not do
// when one of its calls to the system fails.

#include "tests/cli/ScanProcess.h"
#include "tests/faults/ZipContent.h"
#include "tests/support/Files.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace velmora::test {

/// A call that a run made and that could have failed, as the fault injector counts it.
struct Call {
    std::string kind; ///< "open", "read", ...
    int number = 0;   ///< from 1, among those of its kind
    std::string path; ///< what it was about; "" where no file was
};

class Scene {
public:
    Scene();

    /// The calls of a scan that meets no fault.
    const std::vector<Call>& calls() const { return m_calls; }

    /// Scans with `fault` (FaultPlan.h) and returns everything about it that should not be so, one complaint
    /// a line; "" when it was as it should be.
    std::string complaintsAbout(const std::string& fault) const;

    /// Scans and lets the process die at `fault`, scans again, and returns what should not be so then.
    std::string complaintsAfterDeathAt(const std::string& fault) const;

    /// Scans, sends `signal` to the process while it stops at `fault`, lets it go on, and returns what should
    /// not be so.
    std::string complaintsAboutSignal(const std::string& fault, int signal) const;

private:
    struct TimedFile {
        double seconds = 0;
        std::int64_t bytes = 0;
        bool operator==(const TimedFile&) const = default;
    };

    struct Run {
        Finished finished;
        fs::path temporary; ///< its temporary directory
        fs::path zip;       ///< where it was to pack to
    };

    class Judge;

    Run run(const std::string& fault) const;
    Run run(const Launch::Variables& faults, const fs::path& temporary) const;
    Launch launch(const Launch::Variables& faults, const fs::path& temporary, const fs::path& zip) const;
    std::string sourcesNow() const;

    const fs::path m_folder = freshFolder() / "Set";
    std::map<std::string, TimedFile> m_files; ///< what a scan without faults finds, by shown path
    ZipContent m_zip;                         ///< and packs
    std::vector<Call> m_calls;
    std::string m_before; ///< of the sources
};

} // namespace velmora::test
