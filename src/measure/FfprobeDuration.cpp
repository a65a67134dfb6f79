#include "measure/FfprobeDuration.h"

#include "confine/ConfinedChild.h"
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
constexpr std::size_t maxAnswer = 4096; // bytes: a number, and no more of anything else
constexpr std::uint64_t maxMemory = std::uint64_t{1} << 30;

/// No process works longer than there is time; one without a deadline, as long as any tool may.
std::uint64_t processorSeconds(const ChildLimits& limits) {
    return limits.deadline
               ? static_cast<std::uint64_t>(std::chrono::ceil<std::chrono::seconds>(*limits.deadline).count())
               : Rules().processorSeconds;
}

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

/// The whole answer in `file`; empty for one that fills it, which is no number.
std::string contentOf(const FileDescriptor& file) {
    std::string content(maxAnswer, '\0');
    const ssize_t size = ::pread(file.get(), content.data(), content.size(), 0);
    content.resize(size > 0 && static_cast<std::size_t>(size) < maxAnswer ? static_cast<std::size_t>(size)
                                                                          : 0);
    return content;
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
    // A file in memory takes the answer, so nobody has to read while the tool writes.
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
    const Rules rules{.reach = Reach::programs,
                      .readable = path, // and no second file, whatever this one asks for
                      .memoryBytes = maxMemory,
                      .processorSeconds = processorSeconds(limits),
                      .fileBytes = maxAnswer};
    runConfined(*tool, args, answer.get(), rules, limits); // the answer counts, not the exit status
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
