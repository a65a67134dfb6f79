#pragma once

// The elements of Matroska and WebM (RFC 9559) that tell of time and sound:
//
//   element          id           content                                           RFC 9559
//   Segment          18538067     everything but the EBML header                    section 5.1
//   Info             1549A966     elements                                          section 5.1.2
//   TimestampScale   2AD7B1       nanoseconds of a unit of time                     section 5.1.2.9
//   Duration         4489         units of time, floating point                     section 5.1.2.10
//   Tracks           1654AE6B     elements                                          section 5.1.4
//   TrackEntry       AE           elements                                          section 5.1.4.1
//   TrackType        83           2: audio                                          section 5.1.4.1.3
//   Audio            E1           elements                                          section 5.1.4.1.29
//   SamplingFrequency  B5         samples a second, floating point; else 8000       section 5.1.4.1.29.1
//   Channels         9F           else 1                                            section 5.1.4.1.29.3
//   Cluster          1F43B675     media                                             section 5.1.3
//   Timestamp        E7           units of time, before the blocks                  section 5.1.3.1
//   SimpleBlock      A3           track, time from the cluster's (2 bytes, signed)  section 5.1.3.4
//   BlockGroup       A0           elements                                          section 5.1.3.5
//   Block            A1           as SimpleBlock                                    section 5.1.3.5.1

#include "measure/formats/EbmlElement.h"

#include <cstdint>
#include <optional>

namespace velmora {

namespace Matroska {

inline constexpr std::uint32_t segmentId = 0x1853'8067;
inline constexpr std::uint32_t infoId = 0x1549'A966;
inline constexpr std::uint32_t timestampScaleId = 0x2A'D7B1;
inline constexpr std::uint32_t durationId = 0x4489;
inline constexpr std::uint32_t tracksId = 0x1654'AE6B;
inline constexpr std::uint32_t trackEntryId = 0xAE;
inline constexpr std::uint32_t trackTypeId = 0x83;
inline constexpr std::uint32_t audioId = 0xE1;
inline constexpr std::uint32_t samplingFrequencyId = 0xB5;
inline constexpr std::uint32_t channelsId = 0x9F;
inline constexpr std::uint32_t clusterId = 0x1F43'B675;
inline constexpr std::uint32_t timestampId = 0xE7;
inline constexpr std::uint32_t simpleBlockId = 0xA3;
inline constexpr std::uint32_t blockGroupId = 0xA0;
inline constexpr std::uint32_t blockId = 0xA1;
inline constexpr std::uint64_t audioTrack = 2;

} // namespace Matroska

/// The one element that holds everything, after the one that says what the file is, which stands at `start`.
/// Absent if there is none.
std::optional<EbmlElement> matroskaSegment(GuardedReader& reader, std::int64_t start);

/// When `block`, a SimpleBlock or a Block, begins, in units of time after its cluster does.
std::optional<std::int64_t> matroskaBlockTime(GuardedReader& reader, const EbmlElement& block);

} // namespace velmora
