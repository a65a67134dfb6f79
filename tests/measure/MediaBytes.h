#pragma once

// Media files built from bytes, for what no encoder makes on demand.

#include "measure/MediaDuration.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <string>
#include <string_view>
#include <variant>

namespace velmora::test {

/// `value` in `count` bytes, lowest or highest first.
std::string le(std::uint64_t value, std::size_t count);
std::string be(std::uint64_t value, std::size_t count);

std::string zeros(std::size_t count);

/// `part` repeated `count` times.
std::string times(std::size_t count, std::string_view part);

/// A chunk of RIFF (size lowest byte first) or of IFF (highest first): name, size, content, a byte to make it
/// even.
std::string riffChunk(std::string_view name, std::string_view content);
std::string iffChunk(std::string_view name, std::string_view content);

/// A box of MP4: size, type, content.
std::string mp4Box(std::string_view type, std::string_view content);

/// What mediaDuration says to `bytes` in a file called `name`.
MediaAnswer answerFor(std::string_view bytes, const std::string& name = "track.mp3");

/// The seconds of `answer`; -1 for every case but Timed.
double secondsIn(const MediaAnswer& answer);
double secondsOf(std::string_view bytes);

/// Whether `answer` is the case `Case`.
template <typename Case>
bool is(const MediaAnswer& answer) {
    return std::holds_alternative<Case>(answer);
}

/// What mediaDuration says to the file at `path`.
MediaAnswer answerForFile(const std::filesystem::path& path, const std::stop_token& stop = {});

} // namespace velmora::test
