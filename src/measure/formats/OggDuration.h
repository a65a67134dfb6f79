#pragma once

// The playing time of an Ogg file (Vorbis, Opus, Speex, FLAC) from its two ends: the packet on the first page
// names the codec and its sample rate, the last page's granule position counts the samples. Nothing is
// decoded, so a long recording costs as little as a short one. Integers are little-endian.
//
// Page (RFC 3533, section 6):
//
//   offset  size  field
//        0     4  capture pattern, "OggS"
//        4     1  stream structure version, 0
//        5     1  header type flags
//        6     8  granule position; all ones: no packet ends on this page
//       14     4  bitstream serial number
//       18     4  page sequence number
//       22     4  checksum
//       26     1  number of page segments, n
//       27     n  segment table
//     27+n        the packets
//
// Identification header, the first packet of the first page:
//
//   codec   begins with      sample rate               channels   described in
//   Vorbis  1, "vorbis"      32 bits at 12             byte 11    Vorbis I specification, section 4.2.2
//   Opus    "OpusHead"       48000                     byte 9     RFC 7845, section 5.1
//   Speex   "Speex   "       32 bits at 36             32 bits    Speex codec manual, section 7.3
//                                                      at 48
//   FLAC    0x7F, "FLAC"     the upper 20 of the       the next   RFC 9639, section 10.1
//                            24 bits at 27, highest    3, less
//                            byte first                one
//
// The pre-skip of Opus stands in the 16 bits at 10; the others have none.

#include "measure/bytes/ByteSource.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <optional>
#include <span>

namespace velmora::HeaderDuration {

/// The time until the last page of `source` that carries a granule position, of whichever stream; positive.
/// Absent when the source does not begin with a page of a known codec, has no such page among its last
/// 256 KiB, or cannot be read. Reads at most 362 bytes at the start and 256 KiB at the end, none twice.
std::optional<Timing> oggTiming(const ByteSource& source);

/// Its seconds alone.
std::optional<double> oggSeconds(const ByteSource& source);

/// What an identification header says.
struct OggCodec {
    std::uint32_t sampleRate = 0; ///< in Hz, never 0
    std::uint16_t preSkip = 0;    ///< samples to drop at the start; the granule position counts them
    std::uint32_t channels = 0;   ///< 0 where the header is cut short before them

    bool operator==(const OggCodec&) const = default;
};

/// The codec of the identification header `packet`; absent when it is cut short or of no known codec.
std::optional<OggCodec> identifyOggCodec(std::span<const std::uint8_t> packet);

} // namespace velmora::HeaderDuration
