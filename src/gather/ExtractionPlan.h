#pragma once

// Which tools may unpack an archive, in which order, with which arguments. The order holds on every system; a
// tool that is not installed is passed over when its turn comes.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::Collector {

/// What a tool finds in the extraction directory.
enum class Ground : bool {
    shared, ///< the plain files of the tools before it
    empty,
};

/// One attempt: a tool and its arguments.
struct ExtractionStep {
    std::string_view tool; ///< absolute path
    std::vector<std::string> args;
    std::optional<std::filesystem::path> out; ///< the file its standard output becomes; absent: discarded
    Ground ground = Ground::shared;

    bool operator==(const ExtractionStep&) const = default;
};

/// When unzip is tried: before the tools for single files and bsdtar, or after them. See GarbledZipNames.h.
enum class UnzipTurn : bool { asUsual, last };

/// The attempts to unpack `archive` into `directory`, to be made until one succeeds. The tools read `input`:
/// a copy of the archive, or `archive` itself. The name that counts is the archive's.
///
///   zip, zipx  ->  ditto, tar, unzip, bsdtar
///   gz         ->  tar, unzip, gunzip to a file named as the archive without ".gz", bsdtar
///   bz2        ->  tar, unzip, bunzip2 likewise, bsdtar
///   others     ->  tar, unzip, bsdtar
///
/// bsdtar, and unzip where it is the last, start from an empty directory: they name the same members in other
/// ways, and what two tools made would be counted twice.
std::vector<ExtractionStep> extractionPlan(const std::filesystem::path& archive,
                                           const std::filesystem::path& input,
                                           const std::filesystem::path& directory, UnzipTurn unzip);

} // namespace velmora::Collector
