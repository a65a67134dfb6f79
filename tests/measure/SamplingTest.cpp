// What a measurement says of the sound besides its length, on a file of a real encoder for each reader. The
// truth is what was encoded.

#include "measure/MeasurementPipeline.h"
#include "tests/support/Files.h"
#include "tests/support/NamedRow.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace velmora::test {
namespace {

constexpr AudioShape stereo{.frames = 88'200};
constexpr AudioShape mono{.frames = 96'000, .rate = 48'000, .channels = 1};

struct SamplingCase : NamedRow {
    std::string extension;
    FormatName format;
    std::uint32_t stereoRate = 44'100; ///< of `stereo`, once encoded
};

class SamplingOf : public testing::TestWithParam<SamplingCase> {};

TEST_P(SamplingOf, IsWhatWasEncoded) {
    const SamplingCase& row = GetParam();
    const fs::path folder = freshFolder();
    const Measured two = Collector::measure(encodeAudio(folder / ("two." + row.extension), stereo));
    EXPECT_EQ(two.format.text(), row.format.text());
    EXPECT_EQ(two.sampleRate, row.stereoRate);
    EXPECT_EQ(two.channels, 2);
    const Measured one = Collector::measure(encodeAudio(folder / ("one." + row.extension), mono));
    EXPECT_EQ(one.format.text(), row.format.text());
    EXPECT_EQ(one.sampleRate, 48'000U);
    EXPECT_EQ(one.channels, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SamplingOf,
    testing::Values(SamplingCase{"Wav", "wav", "WAV"}, SamplingCase{"Rf64", "rf64", "RF64"},
                    SamplingCase{"Wave64", "w64", "Wave64"}, SamplingCase{"Aiff", "aiff", "AIFF"},
                    SamplingCase{"Au", "au", "AU"}, SamplingCase{"Caf", "caf", "CAF"},
                    SamplingCase{"Voc", "voc", "VOC"}, SamplingCase{"SoundDesigner", "sd2", "Sound Designer"},
                    SamplingCase{"Flac", "flac", "FLAC"}, SamplingCase{"WavPack", "wv", "WavPack"},
                    SamplingCase{"TrueAudio", "tta", "True Audio"}, SamplingCase{"Mp3", "mp3", "MP3"},
                    SamplingCase{"Mp2", "mp2", "MP2"}, SamplingCase{"Adts", "aac", "AAC"},
                    SamplingCase{"Mp4WithAac", "m4a", "MP4"}, SamplingCase{"Mp4WithAlac", "alac", "MP4"},
                    SamplingCase{"Matroska", "mka", "Matroska"}, SamplingCase{"Vorbis", "ogg", "Ogg"},
                    SamplingCase{"Opus", "opus", "Ogg", 48'000},
                    SamplingCase{"RealMedia", "ra", "RealMedia"}),
    &rowName<SamplingCase>);

TEST(Sampling, OfMusepackVersion8) {
    const Measured file = Collector::measure(encodeAudio(freshFolder() / "a.mpc", stereo));
    EXPECT_EQ(file.format.text(), "Musepack SV8");
    EXPECT_EQ(file.sampleRate, 44'100U);
    EXPECT_EQ(file.channels, 2);
}

TEST(Sampling, OfSpeech) {
    const fs::path folder = freshFolder();
    const Measured amr = Collector::measure(encodeAudio(folder / "a.amr", oneSecond));
    EXPECT_EQ(amr.format.text(), "AMR");
    EXPECT_EQ(amr.sampleRate, 8'000U);
    EXPECT_EQ(amr.channels, 1);
    const Measured speex =
        Collector::measure(encodeAudio(folder / "a.spx", {.frames = 64'000, .rate = 32'000}));
    EXPECT_EQ(speex.format.text(), "Ogg");
    EXPECT_EQ(speex.sampleRate, 32'000U);
    EXPECT_EQ(speex.channels, 2);
}

TEST(Sampling, OfFramesInAnotherFormatIsTheirs) {
    const fs::path file =
        encodeAudio(freshFolder() / "a.wav", R"(ffmpeg -v error -y -i "$IN" -c:a libmp3lame "$OUT")", stereo);
    const Measured measured = Collector::measure(file);
    EXPECT_EQ(measured.format.text(), "WAV");
    EXPECT_EQ(measured.sampleRate, 44'100U);
    EXPECT_EQ(measured.channels, 2);
}

TEST(Sampling, IsUnknownWhereNothingWasReadForIt) {
    const Measured file = Collector::measure(encodeAudio(freshFolder() / "a.wma", stereo));
    EXPECT_GT(file.seconds, 0);
    EXPECT_EQ(file.format.text(), "ASF");
    EXPECT_EQ(file.sampleRate, 0U);
    EXPECT_EQ(file.channels, 0);
}

TEST(Sampling, TakesNoNumberThatNoSoundHas) {
    EXPECT_EQ(samplingOf(44'099.6, 2), (Sampling{44'100, 2}));
    EXPECT_EQ(samplingOf(1e9, 65'535), (Sampling{1'000'000'000, 65'535}));
    for (const double rate : {0.0, -44'100.0, 2e9, HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(samplingOf(rate, 0), Sampling()) << rate;
    }
    EXPECT_EQ(samplingOf(8'000, 65'536), (Sampling{8'000, 0}));
    EXPECT_EQ(samplingOf(8'000, -1), (Sampling{8'000, 0}));
}

TEST(Sampling, TakesEightBytesMoreThanTheLengthInARecord) {
    EXPECT_LE(sizeof(Measured), sizeof(FilePath) + 2 * sizeof(double) + 16);
}

} // namespace
} // namespace velmora::test
