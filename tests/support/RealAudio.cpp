#include "tests/support/RealAudio.h"

#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>
#include <vector>

namespace velmora::test {

namespace {

struct EncoderRow {
    std::string_view extension;
    std::string_view command;
};

// What the extension alone does not tell a tool is told by its options.
constexpr auto encoders = std::to_array<EncoderRow>({
    {"wav", R"(cp "$IN" "$OUT")"},
    {"wave", R"(cp "$IN" "$OUT")"},
    {"bwf", R"(ffmpeg -v error -y -i "$IN" -write_bext 1 -metadata description=take -f wav "$OUT")"},
    {"rf64", R"(ffmpeg -v error -y -i "$IN" -rf64 always -f wav "$OUT")"},
    {"w64", R"(sox "$IN" "$OUT")"},
    {"aif", R"(sox "$IN" "$OUT")"},
    {"aiff", R"(sox "$IN" "$OUT")"},
    {"aifc", R"(sox "$IN" "$OUT")"},
    {"au", R"(sox "$IN" "$OUT")"},
    {"snd", R"(sox "$IN" -t au "$OUT")"},
    {"caf", R"(ffmpeg -v error -y -i "$IN" -f caf "$OUT")"},
    {"voc", R"(sox "$IN" "$OUT")"},
    {"flac", R"(flac -s -f -o "$OUT" "$IN")"},
    {"alac", R"(ffmpeg -v error -y -i "$IN" -c:a alac -f ipod "$OUT")"},
    {"wv", R"(wavpack -q -y "$IN" -o "$OUT")"},
    {"tta", R"(ffmpeg -v error -y -i "$IN" "$OUT")"},
    {"mp3", R"(lame --quiet "$IN" "$OUT")"},
    {"mp2", R"(twolame --quiet "$IN" "$OUT" >/dev/null)"},
    {"aac", R"(ffmpeg -v error -y -i "$IN" -c:a aac -f adts "$OUT")"},
    {"adts", R"(ffmpeg -v error -y -i "$IN" -c:a aac -f adts "$OUT")"},
    {"m4a", R"(ffmpeg -v error -y -i "$IN" -c:a aac -f ipod "$OUT")"},
    {"m4b", R"(ffmpeg -v error -y -i "$IN" -c:a aac -f ipod "$OUT")"},
    {"m4r", R"(ffmpeg -v error -y -i "$IN" -c:a aac -f ipod "$OUT")"},
    {"mp4", R"(ffmpeg -v error -y -i "$IN" -c:a aac "$OUT")"},
    {"3ga", R"(ffmpeg -v error -y -i "$IN" -c:a aac -f 3gp "$OUT")"},
    {"mka", R"(ffmpeg -v error -y -i "$IN" -c:a flac -f matroska "$OUT")"},
    {"ogg", R"(oggenc -Q "$IN" -o "$OUT")"},
    {"oga", R"(oggenc -Q "$IN" -o "$OUT")"},
    {"ogx", R"(oggenc -Q "$IN" -o "$OUT")"},
    {"opus", R"(opusenc --quiet "$IN" "$OUT")"},
    {"spx", R"(speexenc --quiet -u "$IN" "$OUT" 2>/dev/null)"},
    {"wma", R"(ffmpeg -v error -y -i "$IN" -c:a wmav2 -f asf "$OUT")"},
    {"mpc", R"(mpcenc --silent --overwrite "$IN" "$OUT" 2>/dev/null)"},
    {"ra", R"(ffmpeg -v error -y -i "$IN" -c:a ac3 -f rm "$OUT")"},
    {"amr", R"(sox -V1 "$IN" -r 8000 -c 1 -t amr-nb "$OUT")"},
});

std::vector<short> soundOf(const AudioShape& shape) {
    std::vector<short> samples;
    samples.reserve(static_cast<std::size_t>(shape.frames * shape.channels));
    std::uint32_t noise = 1;
    for (std::int64_t frame = 0; frame < shape.frames; ++frame) {
        const double time = static_cast<double>(frame) / shape.rate;
        const auto part = static_cast<int>(std::fmod(time, 3.0)); // 0 tone, 1 noise, 2 silence
        noise = noise * 1'664'525U + 1'013'904'223U;
        double value = 0;
        if (part == 0) {
            value = 12'000 * std::fmod(time, 1.0) * std::sin(time * 2'764.6);
        } else if (part == 1) {
            value = static_cast<double>(noise >> 18) - 8'192;
        }
        std::fill_n(std::back_inserter(samples), shape.channels, static_cast<short>(value));
    }
    return samples;
}

void writeSound(const fs::path& path, const AudioShape& shape, int format) {
    if (path.has_parent_path()) {
        fs::create_directories(path.parent_path());
    }
    SF_INFO info{};
    info.samplerate = shape.rate;
    info.channels = shape.channels;
    info.format = format | SF_FORMAT_PCM_16;
    SNDFILE* file = ::sf_open(path.c_str(), SFM_WRITE, &info);
    if (file == nullptr) {
        ADD_FAILURE() << "cannot write " << path << ": " << ::sf_strerror(nullptr);
        return;
    }
    EXPECT_EQ(::sf_writef_short(file, soundOf(shape).data(), shape.frames), shape.frames) << path;
    EXPECT_EQ(::sf_close(file), 0) << path;
}

} // namespace

fs::path writeWav(const fs::path& path, const AudioShape& shape) {
    writeSound(path, shape, SF_FORMAT_WAV);
    return path;
}

fs::path encodeAudio(const fs::path& path, std::string_view command, const AudioShape& shape) {
    const fs::path source = writeWav(freshFolder() / "source.wav", shape);
    fs::create_directories(path.parent_path());
    shell("IN=" + shellWord(source.native()) + " OUT=" + shellWord(path.native()) + "; " +
          std::string(command));
    fs::remove(source);
    EXPECT_TRUE(fs::is_regular_file(path)) << command << " left no " << path;
    return path;
}

fs::path encodeAudio(const fs::path& path, const AudioShape& shape) {
    std::string extension = path.extension().native();
    extension.erase(0, 1);
    if (extension == "sd2") {
        writeSound(path, shape, SF_FORMAT_SD2);
        return path;
    }
    const auto* const row = std::ranges::find(encoders, extension, &EncoderRow::extension);
    if (row == encoders.end()) {
        ADD_FAILURE() << "no encoder for " << path;
        return path;
    }
    return encodeAudio(path, row->command, shape);
}

} // namespace velmora::test
