// velmora_explain FILE...: how the length of each file was found, or why it was not.
//
//   track.mp3
//     length   12.017 s
//     found    by our own reader of MP3: frames or packets were counted, 460 of them
//     stated   13.000 s, not believed: the file ends before that
//     sound    44100 Hz, channels: 2
//     read     8192 of 192512 bytes; of the search's budget 8380416 bytes were left

#include "measure/MeasurementPipeline.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velmora {

namespace {

using Collector::Explanation;

std::string secondsText(double seconds) {
    std::string text(64, '\0');
    const int length = std::snprintf(text.data(), text.size(), "%.6g s", seconds);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string_view text(Way way) {
    switch (way) {
    case Way::headerReader:
        return "by the header reader of ";
    case Way::ownReader:
        return "by our own reader of ";
    case Way::libavformat:
        return "by libavformat in ";
    }
    return {};
}

std::string_view text(Basis basis) {
    switch (basis) {
    case Basis::stated:
        return "the header states it";
    case Basis::counted:
        return "frames or packets were counted";
    case Basis::sized:
        return "the bytes of audio divided by the bytes of a second";
    }
    return {};
}

std::string_view text(Doubt doubt) {
    switch (doubt) {
    case Doubt::none:
        return "believed";
    case Doubt::unfinished:
        return "not believed: its writer did not finish it";
    case Doubt::beyondEnd:
        return "not believed: the file ends before that";
    case Doubt::disagrees:
        return "not believed: the audio says otherwise";
    }
    return {};
}

std::string namedFormat(FormatName format) {
    return format.isKnown() ? std::string(format.text()) : "no format that we know";
}

std::string sound(const Measured& file) {
    if (file.sampleRate == 0) {
        return "not known";
    }
    const std::string channels = file.channels > 0 ? std::to_string(file.channels) : std::string("not known");
    return std::to_string(file.sampleRate) + " Hz, channels: " + channels;
}

/// What was learnt in process.
std::string learnt(const MediaAnswer& answer) {
    return std::visit(
        Cases{
            [](const Timed& timed) {
                const Timing& timing = timed.timing;
                const std::string frames =
                    timing.frames > 0 ? ", " + std::to_string(timing.frames) + " of them" : "";
                return std::string(text(timing.way)) + std::string(timed.format.text()) + ": " +
                       std::string(text(timing.basis)) + frames;
            },
            [](const NothingPlays& nothing) {
                return namedFormat(nothing.format) + ", in which nothing plays";
            },
            [](const NotAudio& foreign) {
                return "no audio; libavformat would open it with its demuxer " + foreign.demuxer;
            },
            [](const OverBudget& over) {
                return namedFormat(over.format) + "; the search ended at its budget or its deadline";
            },
            [](const Unknown& unknown) {
                return namedFormat(unknown.format) + (unknown.isCutOff ? ", cut off inside its header" : "") +
                       "; nothing could be learnt in process";
            },
        },
        answer);
}

std::string found(const Explanation& story) {
    if (!story.answer) {
        return "not opened: no regular file, or one that may not be read";
    }
    const std::string_view ffprobe = story.measured.seconds > 0
                                         ? "; ffprobe was asked, and timed it"
                                         : "; ffprobe was asked, and could not time it";
    return learnt(*story.answer) + std::string(story.wasFfprobeAsked ? ffprobe : "");
}

std::string stated(const std::optional<MediaAnswer>& answer) {
    const Timed* const timed = answer ? std::get_if<Timed>(&*answer) : nullptr;
    if (timed == nullptr || !timed->timing.stated) {
        const bool hasPlace = timed != nullptr && timed->timing.doubt == Doubt::unfinished;
        return hasPlace ? "nothing: its place is empty or holds what no length can be" : "nothing";
    }
    return secondsText(*timed->timing.stated) + ", " + std::string(text(timed->timing.doubt));
}

void print(const Explanation& story) {
    const double seconds = story.measured.seconds;
    std::printf("%s\n", story.measured.url.native().c_str());
    std::printf("  length   %s\n", seconds > 0 ? secondsText(seconds).c_str() : "not known");
    if (const std::optional<Reason> why = story.measured.why) {
        std::printf("  why      %s\n", std::string(wordsFor(*why)).c_str());
    }
    std::printf("  found    %s\n", found(story).c_str());
    std::printf("  stated   %s\n", stated(story.answer).c_str());
    std::printf("  sound    %s\n", sound(story.measured).c_str());
    std::printf("  read     %lld of %lld bytes; of the search's budget %lld bytes were left\n",
                static_cast<long long>(story.bytesRead), static_cast<long long>(story.measured.bytes),
                static_cast<long long>(story.budgetLeft));
}

} // namespace

} // namespace velmora

int main(int count, char** arguments) {
    const std::span<char*> files = std::span(arguments, static_cast<std::size_t>(count)).subspan(1);
    if (files.empty()) {
        std::fputs("usage: velmora_explain FILE...\n", stderr);
        return 2;
    }
    for (const char* const file : files) {
        velmora::print(velmora::Collector::explain(file));
    }
    return 0;
}
