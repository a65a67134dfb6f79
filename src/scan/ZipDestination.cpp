// Which destinations of the zip export would cost the user a file.

#include "records/AudioExtensions.h"
#include "scan/ScanModel.h"
#include "system/FileName.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// What tells one file from all others, whatever names it has.
struct Identity {
    dev_t device = 0;
    ino_t number = 0;

    bool operator==(const Identity&) const = default;
};

/// Absent when nothing is there, or when it cannot be looked at; `errno` then says why.
std::optional<Identity> identityOf(const fs::path& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return Identity{status.st_dev, status.st_ino};
}

} // namespace

std::optional<std::string> ScanModel::objectionToZip(const fs::path& destination) const {
    const std::string name = lastComponent(destination);
    if (Collector::isAudio(classifyingExtension(name))) {
        return name + " has the name of an audio file";
    }
    const std::optional<Identity> present = identityOf(destination);
    if (!present && errno != ENOENT) {
        return name + ": " + std::generic_category().message(errno);
    }
    const auto isPresent = [&](const fs::path& source) { // by its name where it cannot be looked at
        return source.native() == destination.native() || identityOf(source) == present;
    };
    const bool isSource =
        present &&
        (std::ranges::any_of(m_summary.dropped, isPresent) ||
         std::ranges::any_of(m_details->files, isPresent, &Measured::url) ||
         std::ranges::any_of(m_details->skippedArchives, isPresent, &SkippedArchive::path) ||
         std::ranges::any_of(m_details->archiveOf, isPresent,
                             [](const auto& unpacked) -> const fs::path& { return unpacked.second; }));
    return isSource ? std::optional(name + " would replace a source of this scan") : std::nullopt;
}

} // namespace velmora
