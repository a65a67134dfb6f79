// A media file as the dispatch sees it: by its first bytes to a reader, or to libavformat behind the guard.

#include "fuzz/Targets.h"
#include "measure/FfprobeDuration.h"
#include "measure/MediaDuration.h"

#include <array>
#include <cmath>
#include <limits>

namespace velmora::fuzz {

void fuzzMedia(Bytes bytes) {
    constexpr std::array names = {"a.mp3", "b.wav", "c.aac", "d.txt"}; // only a hint
    const std::filesystem::path name = names[bytes.size() % names.size()];
    const auto timer = [&name](const ByteSource& source) -> std::optional<Timing> {
        const MediaFinding finding = mediaDuration(source, name, {});
        require(finding.budgetLeft >= 0, "no more is left of the budget than nothing");
        const auto* const timed = std::get_if<Timed>(&finding.answer);
        require(timed == nullptr || timed->timing.seconds > 0, "what has a length plays");
        return timed == nullptr ? std::nullopt : std::optional(timed->timing);
    };
    checkTimer(timer, bytes, std::numeric_limits<double>::max());
}

void fuzzFfprobeAnswer(Bytes bytes) {
    const std::string answer(bytes.begin(), bytes.end());
    const double seconds = Collector::secondsInAnswer(answer);
    require(seconds == -1.0 || (seconds > 0 && std::isfinite(seconds)), "an answer is a length or none");
}

} // namespace velmora::fuzz
