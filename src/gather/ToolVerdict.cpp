#include "gather/ToolVerdict.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <span>
#include <string_view>

namespace velmora::Collector {

namespace {

using Phrases = std::span<const std::string_view>;

/// Of the system, in any tool's message.
constexpr auto noRoomPhrases =
    std::to_array<std::string_view>({"No space left on device", "Disk quota exceeded", "File too large"});

/// Of unzip and of libarchive's readers for zip, 7z and rar.
constexpr auto encryptedPhrases = std::to_array<std::string_view>({
    " unable to get password",
    " incorrect password",
    "Couldn't read passphrase",
    "Passphrase required for",
    "encrypted, but currently not",
    "RAR encryption support unavailable",
    "Encryption is not supported",
});

/// Of tar, gzip, bzip2 and xz, by themselves or as tar starts them.
constexpr auto damagedPhrases = std::to_array<std::string_view>({
    "Unexpected EOF in archive",
    "unexpected end of file",
    "invalid compressed data",
    "ends unexpectedly",
    "Data integrity error",
    "Unexpected end of input",
    "data is corrupt",
});

/// Of bsdtar: what it has no reader for, or cannot write as it is called. All its other failures are the
/// archive's.
constexpr auto unknownToBsdtar =
    std::to_array<std::string_view>({"Unrecognized archive format", "nsupported", "not supported"});
constexpr auto refusedByBsdtar = std::to_array<std::string_view>({"Can't ", "Cannot ", "Path contains "});

/// Of bsdtar's reader for rar, which passes over the mark that content is encrypted, and reads noise. The
/// same words stand for damage: nobody knows.
constexpr auto doubtfulPhrases = std::to_array<std::string_view>(
    {"Invalid PPMd sequence", "PPMd range decoder", "Bad RAR file", "Prefix found", "Invalid prefix code",
     "File CRC error", "Internal error extracting RAR", "RAR VM"});

// unzip's exit statuses, as its manual page lists them.
constexpr int unzipDiskFull = 50;
constexpr int unzipWrongPassword = 82;
constexpr std::array unzipDamaged = {2, 3, 12, 51};

constexpr int killed = 128; // and the signal's number

bool says(const ToolEnd& end, Phrases phrases) {
    return std::ranges::any_of(
        phrases, [&](std::string_view phrase) { return end.errors.find(phrase) != std::string::npos; });
}

Reason verdictOfBsdtar(const ToolEnd& end) {
    if (says(end, unknownToBsdtar)) {
        return Reason::noTool;
    }
    const bool isDoubtful = says(end, refusedByBsdtar) || says(end, doubtfulPhrases);
    return isDoubtful ? Reason::toolFailed : Reason::damaged;
}

} // namespace

Reason verdictOf(const std::filesystem::path& tool, const ToolEnd& end) {
    const bool isUnzip = tool.filename() == "unzip";
    if (!end.status) {
        return Reason::noTool;
    }
    if (says(end, noRoomPhrases) || end.status == killed + SIGXFSZ ||
        (isUnzip && end.status == unzipDiskFull)) {
        return Reason::noRoom;
    }
    if (says(end, encryptedPhrases) || (isUnzip && end.status == unzipWrongPassword)) {
        return Reason::encrypted;
    }
    if (end.status == ToolEnd::notStarted || *end.status > killed) {
        return Reason::toolFailed;
    }
    if (tool.filename() == "bsdtar") {
        return verdictOfBsdtar(end);
    }
    const bool isDamaged =
        says(end, damagedPhrases) || (isUnzip && std::ranges::count(unzipDamaged, *end.status) > 0);
    return isDamaged ? Reason::damaged : Reason::noTool;
}

Reason weightier(Reason one, Reason other) {
    for (const Reason reason : {Reason::noRoom, Reason::encrypted, Reason::damaged, Reason::toolFailed}) {
        if (one == reason || other == reason) {
            return reason;
        }
    }
    return one;
}

} // namespace velmora::Collector
