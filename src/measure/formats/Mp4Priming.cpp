#include "measure/formats/Mp4Priming.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace velmora {

namespace {

// The comment is an item of the list of metadata, "moov" / "udta" / "meta" / "ilst" / "----" (QuickTime File
// Format, "Metadata"):
//
//   box     content
//   "meta"  version and flags (4), boxes
//   "----"  boxes:
//   "name"  version and flags (4), "iTunSMPB"
//   "data"  type (4), locale (4), text
//
// The text as its writers make it: numbers in hexadecimal, separated by spaces: 0, samples before the sound,
// samples after it, samples of the sound, and further ones.

constexpr std::int64_t dataHeaderBytes = 8;
constexpr std::string_view noteName = "iTunSMPB";

/// At most 4 KiB of what `box` holds after its first `skipped` bytes.
std::string textIn(GuardedReader& reader, const Mp4Box& box, std::int64_t skipped) {
    const auto bytes = reader.headerUpTo(box.content + skipped, GuardedReader::windowBytes, box.end);
    return {bytes.begin(), bytes.end()};
}

/// The text of an item with the name of the note; empty for others.
std::string noteIn(GuardedReader& reader, const Mp4Box& item) {
    bool isNote = false;
    std::string text;
    forEachMp4Box(reader, item.content, item.end, [&](const Mp4Box& box) {
        if (box.type == mp4Type("name")) {
            isNote = textIn(reader, box, mp4FullBoxBytes) == noteName;
        } else if (box.type == mp4Type("data") && isNote) {
            text = textIn(reader, box, dataHeaderBytes);
        }
    });
    return text;
}

std::optional<Mp4Priming> parsed(std::string_view note) {
    std::array<std::int64_t, 4> numbers{};
    for (std::int64_t& number : numbers) {
        note.remove_prefix(std::min(note.find_first_not_of(' '), note.size()));
        const auto [end, error] = std::from_chars(note.data(), note.data() + note.size(), number, 16);
        if (error != std::errc{} || number < 0) {
            return std::nullopt;
        }
        note.remove_prefix(static_cast<std::size_t>(end - note.data()));
    }
    const Mp4Priming priming{.before = numbers[1], .sound = numbers[3], .after = numbers[2]};
    return priming.sound > 0 ? std::optional(priming) : std::nullopt;
}

} // namespace

std::optional<Mp4Priming> readMp4Priming(GuardedReader& reader, const Mp4Box& movie) {
    const auto userData = findMp4Box(reader, movie, mp4Type("udta"));
    auto metadata = userData ? findMp4Box(reader, *userData, mp4Type("meta")) : std::nullopt;
    if (!metadata) {
        return std::nullopt;
    }
    metadata->content += mp4FullBoxBytes;
    const auto items = findMp4Box(reader, *metadata, mp4Type("ilst"));
    std::optional<Mp4Priming> found;
    if (items) {
        forEachMp4Box(reader, items->content, items->end, [&](const Mp4Box& item) {
            if (item.type == mp4Type("----") && !found) {
                found = parsed(noteIn(reader, item));
            }
        });
    }
    return found;
}

double soundOf(const Mp4Priming& priming, std::int64_t duration) {
    constexpr double frameSamples = 2048; // writers round to a frame
    const auto sound = static_cast<double>(priming.sound);
    const double all = static_cast<double>(priming.before) + sound + static_cast<double>(priming.after);
    // Where a coder doubles the sampling rate, the track may count in samples of the lower one.
    for (const double samples : {1.0, 2.0}) {
        if (std::abs(all - static_cast<double>(duration) * samples) <= frameSamples) {
            return sound / samples;
        }
    }
    return static_cast<double>(duration);
}

} // namespace velmora
