#include "measure/formats/EbmlElement.h"

#include "measure/bytes/ByteOrder.h"

#include <bit>

namespace velmora {

namespace {

constexpr std::size_t maxIdBytes = 4;
constexpr std::size_t maxIntegerBytes = 8;

/// A number that tells its own length.
struct SizedNumber {
    std::uint64_t bits = 0; ///< all of it
    std::size_t length = 0; ///< in bytes

    /// The bits that are left for the value.
    std::uint64_t mask() const { return (1ULL << 7 * length) - 1; }
};

std::uint64_t numberOf(std::span<const std::uint8_t> bytes) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes) {
        number = number << 8 | byte;
    }
    return number;
}

std::optional<SizedNumber> sizedNumberAt(GuardedReader& reader, std::int64_t at) {
    const auto first = reader.header(at, 1);
    if (first.empty() || first[0] == 0) {
        return std::nullopt;
    }
    const auto length = static_cast<std::size_t>(std::countl_zero(first[0])) + 1;
    const auto bytes = reader.header(at, length);
    return bytes.empty() ? std::nullopt : std::optional(SizedNumber{numberOf(bytes), length});
}

} // namespace

std::optional<EbmlElement> ebmlElementAt(GuardedReader& reader, std::int64_t at) {
    const std::optional<SizedNumber> id = sizedNumberAt(reader, at);
    if (!id || id->length > maxIdBytes) {
        return std::nullopt;
    }
    at += static_cast<std::int64_t>(id->length);
    const std::optional<SizedNumber> size = sizedNumberAt(reader, at);
    if (!size) {
        return std::nullopt;
    }
    EbmlElement element{static_cast<std::uint32_t>(id->bits), at + static_cast<std::int64_t>(size->length),
                        std::nullopt};
    const std::uint64_t value = size->bits & size->mask();
    if (value != size->mask()) { // all ones: not known
        element.size = static_cast<std::int64_t>(value);
    }
    return element;
}

std::optional<std::uint64_t> ebmlInteger(GuardedReader& reader, const EbmlElement& element) {
    const auto size = static_cast<std::uint64_t>(element.size.value_or(0));
    const auto bytes = reader.header(element.content, std::min<std::size_t>(size, maxIntegerBytes));
    return bytes.empty() || size > maxIntegerBytes ? std::nullopt : std::optional(numberOf(bytes));
}

std::optional<double> ebmlNumber(GuardedReader& reader, const EbmlElement& element) {
    const std::optional<std::uint64_t> bits = ebmlInteger(reader, element);
    if (bits && element.size == 4) {
        return std::bit_cast<float>(static_cast<std::uint32_t>(*bits));
    }
    return bits && element.size == 8 ? std::optional(std::bit_cast<double>(*bits)) : std::nullopt;
}

} // namespace velmora
