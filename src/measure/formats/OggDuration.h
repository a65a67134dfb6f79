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
//   codec   begins with      sample rate               pre-skip   described in
//   Vorbis  1, "vorbis"      32 bits at 12             0          Vorbis I specification, section 4.2.2
//   Opus    "OpusHead"       48000                     16 bits    RFC 7845, section 5.1
//                                                      at 10
//   Speex   "Speex   "       32 bits at 36             0          Speex codec manual, section 7.3
//   FLAC    0x7F, "FLAC"     the upper 20 of the       0          RFC 9639, section 10.1
//                            24 bits at 27, highest
//                            byte first

#include "measure/bytes/ByteSource.h"

#include <cstdint>
#include <optional>
#include <span>

namespace velmora::HeaderDuration {

/// Seconds until the last page of `source` that carries a granule position, of whichever stream; positive.
/// Absent when the source does not begin with a page of a known codec, has no such page among its last
/// 256 KiB, or cannot be read. Reads at most 362 bytes at the start and 256 KiB at the end, none twice.
std::optional<double> oggSeconds(const ByteSource& source);

/// What an identification header says.
struct OggCodec {
    std::uint32_t sampleRate = 0; ///< in Hz, never 0
    std::uint16_t preSkip = 0;    ///< samples to drop at the start; the granule position counts them

    bool operator==(const OggCodec&) const = default;
};

/// The codec of the identification header `packet`; absent when it is cut short or of no known codec.
std::optional<OggCodec> identifyOggCodec(std::span<const std::uint8_t> packet);

} // namespace velmora::HeaderDuration
