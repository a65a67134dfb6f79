#include "measure/MatroskaDuration.h"

#include "measure/BigEndian.h"
#include "measure/LibavDuration.h"

#include <bit>

namespace velmora {

namespace {

constexpr std::uint32_t segmentId = 0x1853'8067;
constexpr std::int64_t idBytes = 4;

/// An element's size: as many bytes as the first has leading zeros and one, without the bit that ends those
/// zeros.
struct ElementSize {
    std::int64_t bytes = 0;            ///< that the size itself takes
    std::optional<std::int64_t> value; ///< absent if not known: all ones
};

std::optional<ElementSize> sizeAt(GuardedReader& reader, std::int64_t at) {
    const auto first = reader.header(at, 1);
    if (first.empty() || first[0] == 0) {
        return std::nullopt;
    }
    const auto length = static_cast<std::size_t>(std::countl_zero(first[0])) + 1;
    const auto bytes = reader.header(at, length);
    if (bytes.empty()) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8 | byte;
    }
    const std::uint64_t mask = (1ULL << 7 * length) - 1;
    value &= mask;
    const auto taken = static_cast<std::int64_t>(length);
    return ElementSize{taken, value == mask ? std::nullopt : std::optional(static_cast<std::int64_t>(value))};
}

/// True if the segment ends behind the end of the file.
bool isCutOff(GuardedReader& reader, std::int64_t start) {
    const auto head = sizeAt(reader, start + idBytes);
    if (!head || !head->value || *head->value > reader.size()) {
        return false;
    }
    const std::int64_t segment = start + idBytes + head->bytes + *head->value;
    const auto id = reader.header(segment, idBytes);
    if (id.empty() || HeaderDuration::be32(id, 0) != segmentId) {
        return false;
    }
    const auto size = sizeAt(reader, segment + idBytes);
    return size && size->value && *size->value > reader.size() - segment - idBytes - size->bytes;
}

} // namespace

std::optional<double> matroskaDuration(GuardedReader& reader, std::int64_t start) {
    const auto read = isCutOff(reader, start) ? &libavWalkedDuration : &libavDuration;
    return read(reader, start, "matroska");
}

} // namespace velmora
