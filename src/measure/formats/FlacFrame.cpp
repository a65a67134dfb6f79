#include "measure/formats/FlacFrame.h"

#include "measure/bytes/ByteOrder.h"

#include <array>
#include <bit>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::array<std::int32_t, 12> ratesByCode = {0,      88'200, 176'400, 192'000, 8'000,  16'000,
                                                      22'050, 24'000, 32'000,  44'100,  48'000, 96'000};

std::uint8_t checksum8(Bytes bytes) {
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : bytes) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            sum = static_cast<std::uint8_t>((sum << 1) ^ ((sum & 0x80) != 0 ? 0x07 : 0));
        }
    }
    return sum;
}

/// Reads the fields of variable length of one header.
class HeaderCursor {
public:
    explicit HeaderCursor(Bytes bytes)
        : m_bytes(bytes) {}

    std::size_t position() const { return m_at; }

    std::optional<std::int64_t> integer(std::size_t count) {
        std::int64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (m_at >= m_bytes.size()) {
                return std::nullopt;
            }
            value = value << 8 | m_bytes[m_at++];
        }
        return value;
    }

    /// A number of up to 36 bits in the manner of UTF-8.
    std::optional<std::int64_t> codedNumber() {
        const auto first = integer(1);
        if (!first) {
            return std::nullopt;
        }
        const int length = std::countl_one(static_cast<std::uint8_t>(*first));
        if (length == 0) {
            return first;
        }
        if (length == 1 || length == 8) {
            return std::nullopt;
        }
        std::int64_t value = *first & (0x7F >> length);
        for (int i = 1; i < length; ++i) {
            const auto next = integer(1);
            if (!next || (*next & 0xC0) != 0x80) {
                return std::nullopt;
            }
            value = value << 6 | (*next & 0x3F);
        }
        return value;
    }

private:
    Bytes m_bytes;
    std::size_t m_at = 4; // behind the sync word and the four codes
};

std::optional<std::int64_t> blockSamples(int code, HeaderCursor& cursor) {
    switch (code) {
    case 0:
        return std::nullopt;
    case 1:
        return 192;
    case 6:
    case 7: {
        const auto less = cursor.integer(static_cast<std::size_t>(code - 5));
        return less ? std::optional(*less + 1) : std::nullopt;
    }
    default:
        return code < 6 ? 576 << (code - 2) : 256 << (code - 8);
    }
}

bool hasRate(int code, HeaderCursor& cursor, std::int32_t rate) {
    switch (code) {
    case 0:
        return true;
    case 12:
        return cursor.integer(1) == rate / 1000;
    case 13:
        return cursor.integer(2) == rate;
    case 14:
        return cursor.integer(2) == rate / 10;
    default:
        return code < static_cast<int>(ratesByCode.size()) &&
               ratesByCode[static_cast<std::size_t>(code)] == rate;
    }
}

} // namespace

std::optional<FlacStreamInfo> parseStreamInfo(Bytes block) {
    constexpr std::size_t size = 18;
    if (block.size() < size) {
        return std::nullopt;
    }
    const std::uint64_t packed = be64(block, 10); // rate 20 bits, 8 bits, samples 36 bits
    const FlacStreamInfo info{be16(block, 2), static_cast<std::int32_t>(be32(block, 6) & 0xFF'FFFF),
                              static_cast<std::int32_t>(packed >> 44),
                              static_cast<std::int64_t>(packed & 0xF'FFFF'FFFF)};
    return info.rate > 0 ? std::optional(info) : std::nullopt;
}

std::optional<FlacFrame> parseFlacFrame(Bytes bytes, const FlacStreamInfo& stream) {
    constexpr std::uint8_t fixedSync = 0xF8;
    constexpr std::uint8_t variableSync = 0xF9;
    if (bytes.size() < 6 || bytes[0] != 0xFF || (bytes[1] != fixedSync && bytes[1] != variableSync) ||
        (bytes[3] & 0x01) != 0 || bytes[3] >> 4 > 10) {
        return std::nullopt;
    }
    HeaderCursor cursor(bytes);
    const auto number = cursor.codedNumber();
    const auto samples = number ? blockSamples(bytes[2] >> 4, cursor) : std::nullopt;
    if (!samples || !hasRate(bytes[2] & 0x0F, cursor, stream.rate)) {
        return std::nullopt;
    }
    const std::size_t length = cursor.position();
    if (cursor.integer(1) != checksum8(bytes.first(length))) {
        return std::nullopt;
    }
    const bool isFixed = bytes[1] == fixedSync;
    return FlacFrame{isFixed ? *number * stream.blockSamples : *number, *samples};
}

std::optional<FlacFrame> lastFlacFrame(Bytes bytes, const FlacStreamInfo& stream) {
    for (std::size_t at = bytes.size(); at-- > 0;) {
        if (bytes[at] != 0xFF) {
            continue;
        }
        const Bytes rest = bytes.subspan(at);
        if (auto frame = parseFlacFrame(rest.first(std::min(rest.size(), maxFlacHeaderBytes)), stream)) {
            frame->at = at;
            return frame;
        }
    }
    return std::nullopt;
}

bool isWholeFlacFrame(Bytes frame) {
    std::uint16_t sum = 0;
    for (const std::uint8_t byte : frame) {
        sum = static_cast<std::uint16_t>(sum ^ byte << 8);
        for (int bit = 0; bit < 8; ++bit) {
            sum = static_cast<std::uint16_t>((sum << 1) ^ ((sum & 0x8000) != 0 ? 0x8005 : 0));
        }
    }
    return sum == 0 && !frame.empty();
}

} // namespace velmora
