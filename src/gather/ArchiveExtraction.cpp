#include "gather/ArchiveExtraction.h"

#include "gather/DiskShare.h"
#include "gather/ExtractionCleanup.h"
#include "gather/ExtractionPlan.h"
#include "gather/GarbledZipNames.h"
#include "gather/ToolRunner.h"
#include "gather/ToolVerdict.h"
#include "system/FileCopy.h"
#include "system/FileName.h"
#include "system/RegularFile.h"
#include "system/TempRegistry.h"
#include "system/TemporaryDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>
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

/// Makes the attempts of a plan, one after the other in the same directory. The tools read `input`, and write
/// no more than the share of the disk.
class Attempts {
public:
    Attempts(const fs::path& input, const fs::path& directory, DiskShare& share, const std::stop_token& stop,
             const std::function<void()>& meanwhile)
        : m_directory(directory)
        , m_share(share)
        , m_rules{.readable = input, .writable = directory, .fileBytes = share.bytes()}
        , m_stop(stop)
        , m_meanwhile(meanwhile) {}

    /// Makes them until one succeeds; why none did, absent after a success. An attempt that leaves nothing is
    /// a success as well, but the last word only where `nothingIsDone`, or when all others failed.
    std::optional<Reason> failure(const std::vector<ExtractionStep>& plan, bool nothingIsDone) {
        bool foundNothing = false;
        Reason why = Reason::noTool;
        for (const ExtractionStep& step : plan) {
            if (m_stop.stop_requested() || !prepare(step.ground)) {
                return Reason::toolFailed;
            }
            const ToolEnd end = attempt(step);
            if (m_share.isExceeded()) {
                return Reason::noRoom;
            }
            if (!end) {
                why = weightier(why, verdictOf(step.tool, end));
                if (why == Reason::noRoom) { // for any other tool neither
                    return why;
                }
                continue;
            }
            std::error_code error; // a directory closed by its archive is not empty
            if (nothingIsDone || !fs::is_empty(m_directory, error)) {
                return std::nullopt;
            }
            foundNothing = true;
        }
        return foundNothing && makeEmpty(m_directory) ? std::nullopt : std::optional(why);
    }

private:
    /// Makes sure that the next tool meets nothing that it could write through.
    bool prepare(Ground ground) const {
        const bool isClean = ground == Ground::shared && keepPlainFiles(m_directory);
        return isClean || makeEmpty(m_directory);
    }

    ToolEnd attempt(const ExtractionStep& step) {
        const ChildLimits limits{.stop = m_stop, .watch = [this] { return look(); }};
        return step.out ? runCapturing(step.tool, step.args, *step.out, m_rules, limits)
                        : run(step.tool, step.args, m_rules, limits);
    }

    /// The time until the next look; absent when the tool has written too much.
    std::optional<std::chrono::milliseconds> look() const {
        if (m_meanwhile) {
            m_meanwhile();
        }
        return m_share.isExceeded() ? std::nullopt : std::optional(lookPause);
    }

    /// The time between two looks at the disk: short beside the time that a tenth of it takes to be filled,
    /// long beside the time that a look takes.
    static constexpr std::chrono::milliseconds lookPause{5};

    const fs::path& m_directory;
    DiskShare& m_share;
    const Rules m_rules;
    const std::stop_token& m_stop;
    const std::function<void()>& m_meanwhile;
};

/// The share of the disk for an archive of `bytes`. Where that is no small part of it, what an earlier scan
/// left is gone first.
DiskShare shareFor(std::int64_t bytes, const fs::path& directory) {
    constexpr std::uint64_t smallPart = 100;
    DiskShare share(directory);
    if (static_cast<std::uint64_t>(bytes) > share.bytes() / smallPart) {
        TempRegistry::awaitDeletions();
        share = DiskShare(directory);
    }
    return share;
}

/// Why nothing came of it; absent after a success.
std::optional<Reason> unpack(const fs::path& archive, std::int64_t bytes, const fs::path& directory,
                             const std::stop_token& stop, const std::function<void()>& meanwhile) {
    DiskShare share = shareFor(bytes, directory);
    share.count(directory);
    // Without a copy where that would take the room of the content.
    const bool hasRoomForCopy = static_cast<std::uint64_t>(bytes) <= share.bytes() / 4;
    const std::optional<WorkingCopy> copy =
        hasRoomForCopy ? std::optional<WorkingCopy>(std::in_place, archive, stop) : std::nullopt;
    const bool isCopied = copy && !copy->path().empty();
    const fs::path& input = isCopied ? copy->path() : archive;
    if (isCopied) {
        share.count(input);
    }
    const UnzipTurn unzip = unzipGarblesNames(input) ? UnzipTurn::last : UnzipTurn::asUsual;
    return Attempts(input, directory, share, stop, meanwhile)
        .failure(extractionPlan(archive, input, directory, unzip), !mayBeNoTar(archive));
}

} // namespace

Extracted extract(const fs::path& archive, const std::stop_token& stop,
                  const std::function<void()>& meanwhile) {
    const std::optional<RegularFile> file = RegularFile::open(archive);
    if (!file) {
        return {.why = reasonOfOpening(errno)};
    }
    if (file->size() == 0) { // bsdtar would unpack nothing from nothing, and call it success
        return {.why = Reason::empty};
    }
    std::optional<TemporaryDirectory> directory = TemporaryDirectory::make(TempRegistry::freshPath(""));
    if (!directory) {
        return {.why = errno == ENOSPC ? Reason::noRoom : Reason::noDirectory};
    }
    const std::optional<Reason> failure = unpack(archive, file->size(), directory->path(), stop, meanwhile);
    if (stop.stop_requested()) {
        return {.why = Reason::stopped};
    }
    if (failure) {
        return {.why = failure};
    }
    if (!keepOwnContent(directory->path())) {
        return {.why = Reason::cannotBeRead};
    }
    ::chmod(directory->path().c_str(), S_IRWXU); // an archive may hold permissions for its top folder, too
    return {.directory = directory->release()};
}

} // namespace velmora::Collector
