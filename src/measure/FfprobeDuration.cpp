#include "measure/FfprobeDuration.h"

#include "records/Records.h"
#include "system/RegularFile.h"
#include "system/Utf8.h"

#include <sys/mman.h>
#include <unicode/uchar.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>

namespace velmora::Collector {

namespace {

constexpr std::chrono::seconds deadline{30};

/// `text` without white space at both ends; empty if it is not valid UTF-8.
std::string_view trimmed(std::string_view text) {
    std::size_t first = text.size();
    std::size_t end = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t start = text.size() - rest.size();
        const Utf8Part part = takeUtf8(rest);
        if (!part.character) {
            return {};
        }
        if (!u_isUWhiteSpace(static_cast<UChar32>(*part.character))) {
            first = std::min(first, start);
            end = text.size() - rest.size();
        }
    }
    return first < end ? text.substr(first, end - first) : std::string_view();
}

std::string contentOf(const FileDescriptor& descriptor) {
    std::string content;
    std::array<char, 256> buffer{};
    for (;;) {
        const ssize_t got =
            ::pread(descriptor.get(), buffer.data(), buffer.size(), static_cast<off_t>(content.size()));
        if (got <= 0) {
            return content;
        }
        content.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

} // namespace

const std::optional<std::filesystem::path>& ffprobePath() {
    static const std::optional<std::filesystem::path> path = firstExecutable(ffprobePlaces);
    return path;
}

std::optional<std::filesystem::path> firstExecutable(std::span<const std::string_view> places) {
    const auto found =
        std::ranges::find_if(places, [](std::string_view place) { return isExecutableFile(place); });
    return found == places.end() ? std::nullopt : std::optional<std::filesystem::path>(*found);
}

double ffprobeSeconds(const std::filesystem::path& path, const std::stop_token& stop) {
    return ffprobeSeconds(ffprobePath(), path, {stop, deadline});
}

double ffprobeSeconds(const std::optional<std::filesystem::path>& tool, const std::filesystem::path& path,
                      const ChildLimits& limits) {
    if (!tool) {
        return unmeasured;
    }
    // A file in memory takes the answer whatever its length, so nobody has to read while the tool writes.
    const FileDescriptor answer(::memfd_create("ffprobe", MFD_CLOEXEC));
    if (!answer) {
        return unmeasured;
    }
    const std::vector<std::string> args = {"-v",
                                           "quiet",
                                           "-show_entries",
                                           "format=duration",
                                           "-of",
                                           "default=noprint_wrappers=1:nokey=1",
                                           path.native()};
    runChild(*tool, args, answer.get(), limits); // the answer counts, not the exit status
    return secondsInAnswer(contentOf(answer));
}

double secondsInAnswer(std::string_view answer) {
    std::string_view text = trimmed(answer);
    if (text.starts_with('+')) { // which from_chars does not know
        text.remove_prefix(1);
    }
    double seconds = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), seconds);
    const bool isNumber = error == std::errc() && end == text.end();
    return isNumber && seconds > 0 && std::isfinite(seconds) ? seconds : unmeasured;
}

} // namespace velmora::Collector
