#pragma once

// The clock of one stream in an Ogg file: granule positions count its samples from page to page.

#include "measure/check/OggPage.h"
#include "measure/formats/OggDuration.h"

#include <cstdint>
#include <optional>

namespace velmora {

class OggStream {
public:
    /// Of the page that names the codec. One that is not known has no clock here.
    explicit OggStream(const OggPage& first);

    /// Takes the next page; false if others between it and the last one are missing.
    bool take(const OggPage& page);

    /// How long it plays; 0 without a clock.
    double seconds() const;

    /// The same without what is missing between pages.
    double wholeSeconds() const;

    /// When it begins, by its clock; at most that, where the codec does not tell how long a packet is.
    double begin() const;

    /// Seconds that its first packet states; absent for all codecs but FLAC, or if it does not know.
    std::optional<double> stated() const;

    /// Whether its last page came.
    bool isEnded() const { return m_isEnded; }

private:
    std::int64_t maxSamples(std::span<const std::uint8_t> packet) const;
    std::int64_t maxSamplesOn(const OggPage& page) const;
    double secondsOf(std::int64_t samples) const;

    std::optional<HeaderDuration::OggCodec> m_codec;
    bool m_isOpus = false;
    std::int64_t m_maxPacketSamples = 0; ///< of every codec but Opus
    std::int64_t m_statedSamples = 0;
    std::uint32_t m_nextSequence = 0;
    std::optional<std::int64_t> m_begin; ///< granule position before the first packet of sound
    std::int64_t m_last = 0;
    std::int64_t m_missing = 0; ///< samples between pages
    bool m_lacksPages = false;  ///< since the last granule position
    bool m_isEnded = false;
};

} // namespace velmora
