#include "gather/ArchiveExtraction.h"

#include "gather/ExtractionCleanup.h"
#include "gather/ExtractionPlan.h"
#include "gather/GarbledZipNames.h"
#include "gather/ToolRunner.h"
#include "system/FileCopy.h"
#include "system/FileName.h"
#include "system/RegularFile.h"
#include "system/TempRegistry.h"
#include "system/TemporaryDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <system_error>
#include <vector>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// A copy of an archive in the temporary directory, for the tools to read; deleted with its owner.
class WorkingCopy {
public:
    WorkingCopy(const fs::path& archive, const std::stop_token& stop)
        : m_path(TempRegistry::freshPath("src-")) {
        m_path += "-" + lastComponent(archive);
        try {
            copyFile(archive, m_path, stop);
        } catch (const fs::filesystem_error&) {
            m_path.clear();
        }
    }

    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;

    ~WorkingCopy() {
        if (!m_path.empty()) {
            ::unlink(m_path.c_str());
        }
    }

    /// Empty when no copy could be made.
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

/// Whether tar may have taken the content of a compressed single file for an archive with nothing in it: a
/// tar archive ends with two blocks of zeros, and what begins with them is an empty one.
bool mayBeNoTar(const fs::path& archive) {
    const std::string extension = classifyingExtension(archive);
    return extension == "gz" || extension == "bz2" || extension == "xz";
}

/// The tools read `input`, write to `directory`, and no file larger than what the disk has room for.
Rules rulesFor(const fs::path& input, const fs::path& directory) {
    Rules rules{.readable = input, .writable = directory};
    std::error_code error;
    if (const fs::space_info room = fs::space(directory, error); !error) {
        rules.fileBytes = room.available / 10 * 9; // the rest is left to the user
    }
    return rules;
}

/// Makes the attempts of a plan, one after the other in the same directory.
class Attempts {
public:
    Attempts(const fs::path& input, const fs::path& directory, const std::stop_token& stop)
        : m_directory(directory)
        , m_rules(rulesFor(input, directory))
        , m_stop(stop) {}

    /// Whether one of them succeeded. An attempt that leaves nothing is a success as well, but the last word
    /// only where `nothingIsDone`, or when all others failed.
    bool succeed(const std::vector<ExtractionStep>& plan, bool nothingIsDone) {
        for (const ExtractionStep& step : plan) {
            if (m_stop.stop_requested() || !prepare(step.ground)) {
                return false;
            }
            if (!attempt(step)) {
                continue;
            }
            std::error_code error; // a directory closed by its archive is not empty
            if (nothingIsDone || !fs::is_empty(m_directory, error)) {
                return true;
            }
            m_foundNothing = true;
        }
        return m_foundNothing && makeEmpty(m_directory);
    }

private:
    /// Makes sure that the next tool meets nothing that it could write through.
    bool prepare(Ground ground) const {
        const bool isClean = ground == Ground::shared && keepPlainFiles(m_directory);
        return isClean || makeEmpty(m_directory);
    }

    bool attempt(const ExtractionStep& step) const {
        return step.out ? runCapturing(step.tool, step.args, *step.out, m_rules, m_stop)
                        : run(step.tool, step.args, m_rules, m_stop);
    }

    const fs::path& m_directory;
    const Rules m_rules;
    const std::stop_token& m_stop;
    bool m_foundNothing = false;
};

bool unpack(const fs::path& archive, const fs::path& directory, const std::stop_token& stop) {
    const WorkingCopy copy(archive, stop);
    const fs::path& input = copy.path().empty() ? archive : copy.path();
    const UnzipTurn unzip = unzipGarblesNames(input) ? UnzipTurn::last : UnzipTurn::asUsual;
    return Attempts(input, directory, stop)
        .succeed(extractionPlan(archive, input, directory, unzip), !mayBeNoTar(archive));
}

} // namespace

std::optional<fs::path> extract(const fs::path& archive, const std::stop_token& stop) {
    const std::optional<RegularFile> file = RegularFile::open(archive);
    if (!file || file->size() == 0) { // bsdtar would unpack nothing from nothing, and call it success
        return std::nullopt;
    }
    std::optional<TemporaryDirectory> directory = TemporaryDirectory::make(TempRegistry::freshPath(""));
    if (!directory || !unpack(archive, directory->path(), stop) || stop.stop_requested() ||
        !keepOwnContent(directory->path())) {
        return std::nullopt;
    }
    ::chmod(directory->path().c_str(), S_IRWXU); // an archive may hold permissions for its top folder, too
    return directory->release();
}

} // namespace velmora::Collector
