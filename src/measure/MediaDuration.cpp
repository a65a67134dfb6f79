#include "measure/MediaDuration.h"

#include "measure/bytes/AudioTags.h"
#include "measure/bytes/GuardedReader.h"
#include "measure/formats/FlacDuration.h"
#include "measure/formats/FormatTable.h"
#include "measure/formats/Sd2Duration.h"
#include "measure/frames/FrameStreamDuration.h"
#include "measure/libav/Libav.h"
#include "measure/libav/MediaDemuxers.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

/// True for the demuxers of bare frames, which we count ourselves.
bool isFrameDemuxer(const ProbedDemuxer& demuxer) {
    return demuxer.name == "mp3" || demuxer.name == "aac";
}

/// What the timing of a file in `format` comes to.
MediaAnswer answerOf(const std::optional<Timing>& timing, FormatName format, const GuardedReader& reader) {
    if (!timing && reader.isOver()) {
        return OverBudget{format};
    }
    if (!timing) {
        return Unknown{format};
    }
    if (!(timing->seconds > 0) || !std::isfinite(timing->seconds)) {
        return NothingPlays{format};
    }
    return Timed{*timing, format};
}

MediaAnswer formatAnswer(GuardedReader& reader, std::int64_t start, const Format& format) {
    const double maxSeconds = format.maxSecondsInByte * static_cast<double>(reader.size() - start);
    std::optional<Timing> timing = format.read == nullptr ? std::nullopt : format.read(reader, start);
    const bool isCutOff = !timing && format.read != nullptr && reader.isCutOff();
    const auto ask = [&](Doubt doubt) {
        return format.demuxer.empty() ? std::nullopt
                                      : libav().duration(reader, start, std::string(format.demuxer), doubt);
    };
    const auto isLie = [maxSeconds](const std::optional<Timing>& any) {
        return any && any->seconds > maxSeconds;
    };
    if (!timing) {
        timing = ask(Doubt::none);
    }
    if (isLie(timing)) {
        const auto counted = ask(Doubt::beyondEnd);
        const Timing nothing{.stated = timing->seconds, .doubt = Doubt::beyondEnd};
        timing = counted && !isLie(counted) ? counted : nothing; // nothing in there is what it claims to be
    }
    MediaAnswer answer = answerOf(timing, format.name, reader);
    if (auto* const unknown = std::get_if<Unknown>(&answer)) {
        unknown->isCutOff = isCutOff;
    }
    return answer;
}

/// For what begins with no pattern of the table.
MediaAnswer probedAnswer(GuardedReader& reader, std::int64_t start, const std::filesystem::path& name) {
    const std::optional<ProbedDemuxer> demuxer = libav().probe(reader, start, "");
    if (demuxer && demuxer->isMedia && !isFrameDemuxer(*demuxer)) {
        // The longest block of a lossless coder, 65,536 samples at 8 kHz, takes some ten bytes for silence.
        constexpr double maxSecondsInByte = 1;
        const Format format{knownDemuxer(demuxer->name), "", nullptr, demuxer->name, maxSecondsInByte};
        MediaAnswer answer = formatAnswer(reader, start, format);
        if (!std::holds_alternative<Unknown>(answer) && !std::holds_alternative<OverBudget>(answer)) {
            return answer;
        }
    }
    if (const auto timing = searchedFrameDuration(reader, start, findTrailingTags(reader, start))) {
        return answerOf(timing, timing->sampling.coding, reader);
    }
    if (reader.isOver()) {
        return OverBudget{};
    }
    const std::optional<ProbedDemuxer> named = libav().probe(reader, start, name);
    if (named && (!named->isMedia || isFrameDemuxer(*named))) {
        return NotAudio{named->name, named->isMedia};
    }
    const bool isRecognised = named && demuxer; // not by its name alone
    return answerOf(std::nullopt, isRecognised ? knownDemuxer(named->name) : FormatName(), reader);
}

MediaAnswer contentAnswer(GuardedReader& reader, const std::filesystem::path& name) {
    const std::int64_t start = skipLeadingTags(reader);
    if (const Format* const format = formatAt(reader, start)) {
        return formatAnswer(reader, start, *format);
    }
    if (const auto timing = frameStreamDuration(reader, start, findTrailingTags(reader, start))) {
        return answerOf(timing, timing->sampling.coding, reader);
    }
    if (const auto timing = bareFlacDuration(reader, start)) {
        return answerOf(timing, "FLAC", reader);
    }
    return probedAnswer(reader, start, name);
}

bool hasExtension(const std::filesystem::path& name, std::string_view lowerCase) {
    const std::string extension = name.extension().native();
    return std::ranges::equal(extension, lowerCase,
                              [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

} // namespace

MediaFinding mediaDuration(const ByteSource& source, const std::filesystem::path& name,
                           const std::stop_token& stop) {
    GuardedReader reader(source, stop);
    if (hasExtension(name, ".sd2")) {
        if (const auto timing = sd2Duration(name, source.size, stop)) {
            return {Timed{*timing, "Sound Designer"}, reader.budgetLeft()};
        }
    }
    MediaAnswer answer = contentAnswer(reader, name);
    return {std::move(answer), reader.budgetLeft()};
}

} // namespace velmora
