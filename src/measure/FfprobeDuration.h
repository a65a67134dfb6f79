#pragma once

// The last way to time a file: the ffprobe program, where one is installed. It costs a process
// a file, more than any other way, so it is asked only about files that nothing else could time.

#include "system/ChildProcess.h"

#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>
#include <string_view>

namespace velmora::Collector {

/// The seconds that ffprobe states for the file at `path`: positive and finite, or -1.0 when it states none,
/// is not installed, takes longer than 30 seconds, or `stop` is requested. Blocks the calling thread.
double ffprobeSeconds(const std::filesystem::path& path, const std::stop_token& stop = {});

/// As above by the program `tool`, within `limits`; -1.0 without a process when `tool` is absent.
double ffprobeSeconds(const std::optional<std::filesystem::path>& tool, const std::filesystem::path& path,
                      const ChildLimits& limits);

/// Where ffprobe is looked for, in this order.
inline constexpr std::array<std::string_view, 3> ffprobePlaces = {
    "/usr/local/bin/ffprobe", "/opt/homebrew/bin/ffprobe", "/usr/bin/ffprobe"};

/// The installed ffprobe, absent when there is none. Found at the first call and kept for the life of the
/// process. Any thread.
const std::optional<std::filesystem::path>& ffprobePath();

/// The first of `places` that is an executable file.
std::optional<std::filesystem::path> firstExecutable(std::span<const std::string_view> places);

/// The seconds in ffprobe's answer, which is a decimal number and nothing else but white space around it.
/// -1.0 for any other text, for bytes that are not UTF-8, and for what is not positive and finite.
///
///   "12.5\n" -> 12.5    "N/A\n" -> -1.0    "" -> -1.0    "0.000000\n" -> -1.0    "12,5" -> -1.0
double secondsInAnswer(std::string_view answer);

} // namespace velmora::Collector
