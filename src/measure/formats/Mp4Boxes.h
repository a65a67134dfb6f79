#pragma once

// The boxes that MP4, 3GP and QuickTime files are made of (ISO/IEC 14496-12 section 4.2): size (4 bytes),
// type (4), for a size of 1 the real size (8), then content, which may be further boxes.

#include "measure/bytes/GuardedReader.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora {

struct Mp4Box {
    std::uint32_t type = 0;   ///< its four letters, the first in the highest byte
    std::int64_t content = 0; ///< where the content begins
    std::int64_t end = 0;     ///< where the next box begins, never beyond the parent's end
    bool isCutOff = false;    ///< the parent ends first
    bool isOpen = false;      ///< its size is not stated: it goes on to the parent's end

    std::int64_t size() const { return end - content; }
};

/// The number of a box type of four letters.
constexpr std::uint32_t mp4Type(std::string_view letters) {
    std::uint32_t type = 0;
    for (const char letter : letters) {
        type = type << 8 | static_cast<std::uint8_t>(letter);
    }
    return type;
}

/// The box at `at`, which must end before `end`; absent if there is none.
std::optional<Mp4Box> mp4BoxAt(GuardedReader& reader, std::int64_t at, std::int64_t end);

/// Calls `visit(box)` for each box between `at` and `end`, in order.
template <typename Visit>
void forEachMp4Box(GuardedReader& reader, std::int64_t at, std::int64_t end, Visit visit) {
    while (const std::optional<Mp4Box> box = mp4BoxAt(reader, at, end)) {
        visit(*box);
        at = box->end;
    }
}

/// The first box of `type` in `parent`.
std::optional<Mp4Box> findMp4Box(GuardedReader& reader, const Mp4Box& parent, std::uint32_t type);

/// Version (1) and flags (3), with which the content of a "full box" begins.
inline constexpr std::int64_t mp4FullBoxBytes = 4;

/// What lengths are held below, in units of a time scale: sums of two are no overflow.
inline constexpr std::int64_t maxMp4Duration = 1LL << 50;

/// The number in the four bytes at `at` of the content of `box`; absent where it ends before.
std::optional<std::uint32_t> mp4WordAt(GuardedReader& reader, const Mp4Box& box, std::int64_t at);

} // namespace velmora
