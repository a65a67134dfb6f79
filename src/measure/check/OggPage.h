#pragma once

// A page of Ogg (RFC 3533 section 6; the layout stands in formats/OggDuration.h), and how many samples the
// packets on it can be.

#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

struct OggPage {
    std::size_t bytes = 0; ///< of the whole
    bool isFirst = false;  ///< of its stream
    bool isLast = false;
    bool continues = false;                   ///< begins with the rest of a packet
    std::optional<std::int64_t> granule = {}; ///< absent if no packet ends on it
    std::uint32_t serial = 0;
    std::uint32_t sequence = 0;
    bool isWhole = false;                      ///< it holds its checksum
    std::span<const std::uint8_t> lacing = {}; ///< sizes of the segments
    std::span<const std::uint8_t> content = {};
};

inline constexpr std::size_t maxOggHeaderBytes = 27 + 255;

/// How many bytes the page takes whose header `bytes` begin with; absent if there is none, or not all of it.
std::optional<std::size_t> oggPageBytes(std::span<const std::uint8_t> bytes);

/// The page that `bytes` begin with; absent if there is none, or not all of it.
std::optional<OggPage> parseOggPage(std::span<const std::uint8_t> bytes);

/// Calls `visit(packet)` for each packet that begins and ends on `page`.
template <typename Visit>
void forEachOggPacket(const OggPage& page, Visit visit) {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isRest = page.continues;
    for (const std::uint8_t size : page.lacing) {
        end += size;
        if (size < 255) {
            if (!isRest) {
                visit(page.content.subspan(begin, end - begin));
            }
            isRest = false;
            begin = end;
        }
    }
}

} // namespace velmora
