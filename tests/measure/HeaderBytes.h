#pragma once

// Ogg and ASF files built field by field, under the names the formats give their fields, so that a test shows
// only the bytes that matter; and a source that keeps account of every read.

#include "measure/bytes/ByteSource.h"
#include "tests/support/Files.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace velmora::test {

/// `parts`, one after the other.
Bytes joined(std::initializer_list<Bytes> parts);

/// `bytes` from `offset` on replaced by `part`, which must fit.
void overwrite(Bytes& bytes, std::size_t offset, const Bytes& part);

/// A page whose checksum is 0, as no reader here looks at it.
struct OggPage {
    std::uint8_t streamStructureVersion = 0;
    std::uint64_t granulePosition = 0;
    std::uint32_t bitstreamSerialNumber = 1;
    std::uint8_t segments = 1; ///< the table is all zeros
    Bytes packets = {};

    Bytes bytes() const;
};

/// "No packet ends on this page."
inline constexpr std::uint64_t noGranule = UINT64_MAX;

// Identification headers of the length that the codecs give them.
Bytes vorbisHeader(std::uint32_t sampleRate);
Bytes opusHeader(std::uint16_t preSkip, std::uint32_t inputSampleRate);
Bytes speexHeader(std::uint32_t sampleRate);
Bytes flacHeader(std::uint32_t sampleRate);

/// A Vorbis file at 44.1 kHz: its first page, then `rest`.
Bytes vorbisFile(const Bytes& rest);

using AsfGuid = std::array<std::uint8_t, 16>;
inline constexpr AsfGuid asfHeaderGuid = {0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                                          0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};
inline constexpr AsfGuid asfFilePropertiesGuid = {0xA1, 0xDC, 0xAB, 0x8C, 0x47, 0xA9, 0xCF, 0x11,
                                                  0x8E, 0xE4, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
inline constexpr AsfGuid asfOtherGuid = {0x40, 0xA4, 0xD0, 0xD2, 0x07, 0xE3, 0xD2, 0x11,
                                         0x97, 0xF0, 0x00, 0xA0, 0xC9, 0x5E, 0xA8, 0x50};

/// Any object; `objectSize` is the true one unless given.
struct AsfObject {
    AsfGuid guid = asfOtherGuid;
    Bytes content = {};
    std::optional<std::uint64_t> objectSize = {};

    Bytes bytes() const;
};

struct AsfFileProperties {
    std::uint64_t playDuration = 30'000'000; ///< in units of 100 ns
    std::uint64_t preroll = 1'000;           ///< in milliseconds
    std::uint32_t flags = 0;
    std::optional<std::uint64_t> objectSize = {};

    Bytes bytes() const;
};

/// A Header Object around `objects`; `objectSize` is the true one unless given.
Bytes asfHeader(const Bytes& objects, std::optional<std::uint64_t> objectSize = {});

/// What was read of a source: where from, and how many bytes.
struct Read {
    std::int64_t offset = 0;
    std::int64_t bytes = 0;

    bool operator==(const Read&) const = default;
};

/// A source of `bytes` that notes every read in `reads`. Both must outlive it.
ByteSource counted(const Bytes& bytes, std::vector<Read>& reads);

/// A source of `bytes` whose reads fail once `good` of them have succeeded.
ByteSource failingAfter(int good, const Bytes& bytes);

/// How many bytes were read, those read twice counted twice.
std::int64_t bytesIn(const std::vector<Read>& reads);

/// Whether no byte was read twice.
bool areDisjoint(std::vector<Read> reads);

} // namespace velmora::test
