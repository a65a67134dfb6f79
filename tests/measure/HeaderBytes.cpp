#include "tests/measure/HeaderBytes.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace velmora::test {

namespace {

/// `value` in `width` bytes, lowest first.
Bytes littleEndian(std::uint64_t value, std::size_t width) {
    Bytes bytes;
    for (std::size_t i = 0; i < width; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    return bytes;
}

Bytes text(std::string_view characters) {
    return {characters.begin(), characters.end()};
}

Bytes asfObject(const AsfGuid& guid, std::optional<std::uint64_t> objectSize, const Bytes& content) {
    constexpr std::size_t prefix = 24;
    return joined({Bytes(guid.begin(), guid.end()),
                   littleEndian(objectSize.value_or(prefix + content.size()), 8), content});
}

} // namespace

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts) {
        result.insert(result.end(), part.begin(), part.end());
    }
    return result;
}

void overwrite(Bytes& bytes, std::size_t offset, const Bytes& part) {
    std::ranges::copy(part, std::next(bytes.begin(), static_cast<std::ptrdiff_t>(offset)));
}

Bytes OggPage::bytes() const {
    return joined({text("OggS"),
                   {streamStructureVersion},
                   {0}, // header type flags
                   littleEndian(granulePosition, 8),
                   littleEndian(bitstreamSerialNumber, 4),
                   littleEndian(0, 4), // page sequence number
                   littleEndian(0, 4), // checksum
                   {segments},
                   Bytes(segments),
                   packets});
}

Bytes vorbisHeader(std::uint32_t sampleRate) {
    return joined({{1},
                   text("vorbis"),
                   littleEndian(0, 4), // version
                   {2},                // channels
                   littleEndian(sampleRate, 4),
                   Bytes(12), // bit rates
                   {0xB8, 1}});
}

Bytes opusHeader(std::uint16_t preSkip, std::uint32_t inputSampleRate) {
    return joined({text("OpusHead"),
                   {1, 2}, // version, channels
                   littleEndian(preSkip, 2),
                   littleEndian(inputSampleRate, 4),
                   Bytes(3)}); // gain, mapping family
}

Bytes speexHeader(std::uint32_t sampleRate) {
    return joined({text("Speex   "), text("1.2.1               "), littleEndian(1, 4), littleEndian(80, 4),
                   littleEndian(sampleRate, 4), Bytes(40)});
}

Bytes flacHeader(std::uint32_t sampleRate) {
    const std::uint32_t rateAndMore = sampleRate << 4 | 0xF; // the low bits belong to the next field
    return joined({text("\177FLAC"),
                   {1, 0, 0, 1}, // mapping version, header packets
                   text("fLaC"),
                   {0, 0, 0, 34}, // metadata block header
                   littleEndian(0x1000, 2),
                   littleEndian(0x1000, 2),
                   Bytes(6), // block sizes, frame sizes
                   {static_cast<std::uint8_t>(rateAndMore >> 16), static_cast<std::uint8_t>(rateAndMore >> 8),
                    static_cast<std::uint8_t>(rateAndMore)},
                   Bytes(21)});
}

Bytes vorbisFile(const Bytes& rest) {
    return joined({OggPage{.packets = vorbisHeader(44'100)}.bytes(), rest});
}

Bytes AsfObject::bytes() const {
    return asfObject(guid, objectSize, content);
}

Bytes AsfFileProperties::bytes() const {
    return asfObject(
        asfFilePropertiesGuid, objectSize,
        joined({Bytes(16),                                                      // file ID
                littleEndian(0, 8),                                             // file size
                littleEndian(0, 8),                                             // creation date
                littleEndian(0, 8),                                             // data packets count
                littleEndian(playDuration, 8), littleEndian(0, 8),              // send duration
                littleEndian(preroll, 8), littleEndian(flags, 4), Bytes(12)})); // packet sizes, bit rate
}

Bytes asfHeader(const Bytes& objects, std::optional<std::uint64_t> objectSize) {
    return asfObject(asfHeaderGuid, objectSize,
                     joined({littleEndian(1, 4), {1, 2}, objects})); // number of objects, reserved
}

ByteSource counted(const Bytes& bytes, std::vector<Read>& reads) {
    ByteSource source = sourceOf(std::span(bytes));
    source.readAt = [read = source.readAt, &reads](std::int64_t offset, std::span<std::uint8_t> buffer) {
        reads.push_back({offset, static_cast<std::int64_t>(buffer.size())});
        return read(offset, buffer);
    };
    return source;
}

ByteSource failingAfter(int good, const Bytes& bytes) {
    ByteSource source = sourceOf(std::span(bytes));
    source.readAt = [read = source.readAt, left = std::make_shared<int>(good)](
                        std::int64_t offset, std::span<std::uint8_t> buffer) -> std::optional<std::size_t> {
        return (*left)-- > 0 ? read(offset, buffer) : std::nullopt;
    };
    return source;
}

std::int64_t bytesIn(const std::vector<Read>& reads) {
    std::int64_t sum = 0;
    for (const Read& read : reads) {
        sum += read.bytes;
    }
    return sum;
}

bool areDisjoint(std::vector<Read> reads) {
    std::ranges::sort(reads, {}, &Read::offset);
    const auto touching = [](const Read& a, const Read& b) { return a.offset + a.bytes > b.offset; };
    return std::ranges::adjacent_find(reads, touching) == reads.end();
}

} // namespace velmora::test
