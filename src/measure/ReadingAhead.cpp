#include "measure/ReadingAhead.h"

#include "system/FileName.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora::Collector {

namespace {

/// What the readers of a format read of most files, in bytes.
struct Need {
    std::string_view extension;
    std::int64_t head;
    std::int64_t end;
};

/// What the system reads for the first few bytes of a file.
constexpr std::int64_t usualHead = 16 << 10;

/// The tags at the end, of which there may be several.
constexpr std::int64_t tagsAtEnd = 4 << 10;

/// The last page of Ogg (OggDuration.h).
constexpr std::int64_t lastPage = 12 << 10;

/// The index at the start of MP4 stands on this many bytes, in a track of some minutes.
constexpr std::int64_t indexAtStart = 64 << 10;

/// FLAC: what encoders leave free for tags, and the first frames.
constexpr std::int64_t headWithFrames = 32 << 10;

constexpr auto needs = std::to_array<Need>({
    {"mp3", usualHead, tagsAtEnd},
    {"mp2", usualHead, tagsAtEnd},
    {"aac", usualHead, tagsAtEnd},
    {"mpc", usualHead, tagsAtEnd},
    {"ogg", usualHead, lastPage},
    {"oga", usualHead, lastPage},
    {"opus", usualHead, lastPage},
    {"flac", headWithFrames, 16 << 10},
    {"wv", usualHead, 64 << 10},
    {"m4a", indexAtStart, 0},
    {"m4b", indexAtStart, 0},
});

Need needOf(const std::filesystem::path& path) {
    const auto* const row = std::ranges::find(needs, classifyingExtension(path), &Need::extension);
    return row == needs.end() ? Need{{}, usualHead, 0} : *row;
}

void ask(const RegularFile& file, const Need& need) {
    file.willNeed(0, need.head);
    const std::int64_t end = std::max(need.head, file.size() - need.end);
    file.willNeed(end, file.size() - end);
}

} // namespace

WorthAsking worthAskingFor(const std::filesystem::path& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    if (file && file->storage().kind == StorageKind::network) {
        return WorthAsking::names;
    }
    const bool mustSeek = file && file->storage().kind == StorageKind::rotating && !file->isInMemory(0);
    return mustSeek ? WorthAsking::content : WorthAsking::nothing;
}

void readAhead(const std::filesystem::path& path) {
    if (const std::optional<RegularFile> file = RegularFile::open(path)) {
        ask(*file, needOf(path));
    }
}

void askForEnd(const RegularFile& file, const std::filesystem::path& path) {
    if (file.storage().kind == StorageKind::network) {
        ask(file, needOf(path));
    }
}

} // namespace velmora::Collector
