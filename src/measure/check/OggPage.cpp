#include "measure/check/OggPage.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Crc.h"
#include "measure/bytes/Magic.h"

#include <array>
#include <numeric>

namespace velmora {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t flagsAt = 5;
constexpr std::size_t granuleAt = 6;
constexpr std::size_t serialAt = 14;
constexpr std::size_t sequenceAt = 18;
constexpr std::size_t checksumAt = 22;
constexpr std::size_t countAt = 26;
constexpr std::size_t lacingAt = 27;

constexpr std::uint8_t continuesFlag = 1;
constexpr std::uint8_t firstFlag = 2;
constexpr std::uint8_t lastFlag = 4;

/// The checksum counts as zeros where it stands.
bool holdsChecksum(std::span<const std::uint8_t> page) {
    constexpr std::array<std::uint8_t, 4> zeros{};
    std::uint32_t sum = OggCrc32::after(0, page.first(checksumAt));
    sum = OggCrc32::after(sum, zeros);
    sum = OggCrc32::after(sum, page.subspan(checksumAt + zeros.size()));
    return sum == le32(page, checksumAt);
}

} // namespace

std::optional<std::size_t> oggPageBytes(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < lacingAt || !matches(bytes, "OggS\0"sv) || bytes.size() < lacingAt + bytes[countAt]) {
        return std::nullopt;
    }
    const auto lacing = bytes.subspan(lacingAt, bytes[countAt]);
    return std::accumulate(lacing.begin(), lacing.end(), lacingAt + lacing.size());
}

std::optional<OggPage> parseOggPage(std::span<const std::uint8_t> bytes) {
    constexpr std::uint64_t noGranule = ~std::uint64_t{0};
    const auto size = oggPageBytes(bytes);
    if (!size || bytes.size() < *size) {
        return std::nullopt;
    }
    OggPage page;
    page.bytes = *size;
    page.lacing = bytes.subspan(lacingAt, bytes[countAt]);
    const std::size_t contentAt = lacingAt + page.lacing.size();
    page.content = bytes.subspan(contentAt, page.bytes - contentAt);
    page.continues = (bytes[flagsAt] & continuesFlag) != 0;
    page.isFirst = (bytes[flagsAt] & firstFlag) != 0;
    page.isLast = (bytes[flagsAt] & lastFlag) != 0;
    if (const std::uint64_t granule = le64(bytes, granuleAt); granule != noGranule) {
        page.granule = static_cast<std::int64_t>(granule);
    }
    page.serial = le32(bytes, serialAt);
    page.sequence = le32(bytes, sequenceAt);
    page.isWhole = holdsChecksum(bytes.first(page.bytes));
    return page;
}

} // namespace velmora
