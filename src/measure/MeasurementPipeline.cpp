#include "measure/MeasurementPipeline.h"

#include "measure/FfprobeDuration.h"
#include "measure/HeaderDuration.h"
#include "measure/MediaDuration.h"
#include "measure/ReadingAhead.h"
#include "system/RegularFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <utility>

namespace velmora::Collector {

namespace {

/// What was learnt from a file's content must be longer than this, in seconds, to be believed.
constexpr double tooShort = 0.001;

std::int64_t sizeAt(const std::filesystem::path& path) {
    struct stat status {};

    return ::stat(path.c_str(), &status) == 0 ? status.st_size : 0;
}

/// The bytes of `file`; `story` is told how many are read, and of a read that fails. Both must outlive the
/// source.
ByteSource countedSource(const RegularFile& file, Explanation& story) {
    const auto note = [&story](std::int64_t bytes, bool hasFailed) {
        story.bytesRead += bytes;
        story.hasReadFailed = story.hasReadFailed || hasFailed;
    };
    const auto readAt = [&file, note](std::int64_t offset, std::span<std::uint8_t> buffer) {
        const std::optional<std::size_t> got = file.readAt(offset, buffer);
        note(static_cast<std::int64_t>(got.value_or(0)), !got && offset >= 0);
        return got;
    };
    return {file.size(), readAt, file.descriptor(), note};
}

/// The seconds that `answer` settles on: `unmeasured` if no tool is to time the file; absent if ffprobe may.
std::optional<double> settledSeconds(const MediaAnswer& answer) {
    using Seconds = std::optional<double>;
    return std::visit(Cases{
                          [](const Timed& timed) {
                              const double seconds = timed.timing.seconds;
                              const bool isCredible = seconds > tooShort && std::isfinite(seconds);
                              return isCredible ? Seconds(seconds) : std::nullopt;
                          },
                          [](const NothingPlays&) { return Seconds(unmeasured); },
                          [](const NotAudio&) { return Seconds(unmeasured); },
                          [](const OverBudget&) { return Seconds(unmeasured); },
                          [](const Unknown&) { return Seconds(); },
                      },
                      answer);
}

/// Why a file with this answer has no length, when ffprobe could not tell one either.
Reason reasonFor(const MediaAnswer& answer) {
    return std::visit(
        Cases{
            [](const Timed&) { return Reason::tooShort; },
            [](const NothingPlays&) { return Reason::noFrames; },
            [](const NotAudio& other) { return other.isNameAlone ? Reason::noFrames : Reason::notAudio; },
            [](const OverBudget&) { return Reason::searchEnded; },
            [](const Unknown& unknown) {
                return unknown.isCutOff            ? Reason::cutOff
                       : !unknown.format.isKnown() ? Reason::noFrames
                                                   : Reason::notUnderstood;
            },
        },
        answer);
}

/// Why the open file of `story` has no length.
Reason reasonFor(const Explanation& story, std::int64_t size) {
    if (size == 0) {
        return Reason::empty;
    }
    return story.hasReadFailed ? Reason::cannotBeRead : reasonFor(*story.answer);
}

FormatName formatOf(const MediaAnswer& answer) {
    return std::visit(Cases{
                          [](const NotAudio&) { return FormatName(); },
                          [](const auto& audio) { return audio.format; },
                      },
                      answer);
}

/// Keeps `answer` in `story`, and what it says of the sound in its record.
void note(Explanation& story, MediaAnswer answer) {
    story.measured.format = formatOf(answer);
    if (const auto* const timed = std::get_if<Timed>(&answer)) {
        story.measured.sampleRate = timed->timing.sampling.rate;
        story.measured.channels = timed->timing.sampling.channels;
    }
    story.answer = std::move(answer);
}

/// Goes the ways one after the other, and notes in `story` what each comes to.
void take(Explanation& story, const std::filesystem::path& path, const RegularFile& file,
          const std::stop_token& stop) {
    const ByteSource source = countedSource(file, story);
    if (const std::optional<Timed> timed = HeaderDuration::timed(path, source)) {
        story.measured.seconds = timed->timing.seconds;
        note(story, *timed);
        return;
    }
    MediaFinding finding = mediaDuration(source, path, stop);
    const std::optional<double> settled = settledSeconds(finding.answer);
    note(story, std::move(finding.answer));
    story.budgetLeft = finding.budgetLeft;
    story.wasFfprobeAsked = !settled;
    story.measured.seconds = settled ? *settled : ffprobeSeconds(path, stop);
}

} // namespace

Measured measure(const FilePath& file, const std::stop_token& stop) {
    return explain(file, stop).measured;
}

Explanation explain(const FilePath& file, const std::stop_token& stop) {
    const std::filesystem::path path = file;
    Explanation story{.measured = {.url = file, .why = Reason::stopped}};
    const std::optional<RegularFile> opened = RegularFile::open(path);
    if (!opened) {
        story.measured.why = reasonOfOpening(errno);
        story.measured.bytes = sizeAt(path);
        return story;
    }
    story.measured.bytes = opened->size();
    if (stop.stop_requested()) {
        return story;
    }
    askForEnd(*opened, path);
    take(story, path, *opened, stop);
    if (story.hasReadFailed && !story.wasFfprobeAsked) {
        story.measured.seconds = unmeasured;
    }
    if (story.measured.seconds > 0) {
        story.measured.why.reset();
    } else if (!stop.stop_requested()) {
        story.measured.why = reasonFor(story, opened->size());
    }
    return story;
}

} // namespace velmora::Collector
