// WavPack, Musepack, MP4, Matroska and PCM: whole, cut off, damaged, joined, with something after them.

#include "measure/check/Check.h"
#include "tests/measure/MediaBytes.h"
#include "tests/measure/check/Checking.h"
#include "tests/support/Files.h"
#include "tests/support/NamedRow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using enum FindingKind;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

struct Container : NamedRow {
    std::string extension;
    std::string command = {}; ///< of the encoder, if it is not the usual one
};

class CheckContainers : public testing::TestWithParam<Container> {
protected:
    const std::string name = "a." + GetParam().extension;
    const std::string file = GetParam().command.empty()
                                 ? made(GetParam().extension, tenSeconds)
                                 : made(GetParam().extension, GetParam().command, tenSeconds);
};

TEST_P(CheckContainers, HasNoFindingAsItsEncoderMadeIt) {
    EXPECT_THAT(findingsIn(file, name), IsEmpty());
    EXPECT_THAT(findingsIn(file + noise(3'000), name), IsEmpty()) << "some bytes after it";
}

TEST_P(CheckContainers, IsTruncatedWhereverItIsCut) {
    std::uint32_t seed = 7;
    for (int i = 0; i < 12; ++i) {
        seed = seed * 1'664'525U + 1'013'904'223U;
        const double part = 0.02 + 0.9 * (seed >> 8) / (1U << 24);
        EXPECT_THAT(kindsIn(cut(file, part), name), Contains(truncated)) << part;
    }
}

TEST_P(CheckContainers, IsLongerWhereAnotherWasJoined) {
    const Finding found = findingOf(longer, file + file, name);
    EXPECT_NEAR(found.stated.value_or(0), 10, 0.06);
    EXPECT_NEAR(found.found.value_or(0), 20, 0.12);
}

TEST_P(CheckContainers, HasTrailingBytes) {
    EXPECT_THAT(kindsIn(file + noise(70'000), name), Contains(trailing));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CheckContainers,
    testing::Values(Container{"WavPack", "wv"}, Container{"Musepack", "mpc"}, Container{"Matroska", "mka"},
                    Container{"MatroskaOfOpus", "mka", R"(ffmpeg -v error -i "$IN" -c:a libopus "$OUT")"},
                    Container{"Mp4", "m4a"},
                    Container{"Mp4IndexFirst", "m4a",
                              R"(ffmpeg -v error -i "$IN" -c:a aac -movflags +faststart -f ipod "$OUT")"},
                    Container{"Wav", "wav"}, Container{"Aiff", "aiff"}),
    &rowName<Container>);

} // namespace

TEST(CheckWavPack, FindsDamageWhereverItIs) {
    const std::string file = made("wv", tenSeconds);
    EXPECT_THAT(kindsIn(withBitTurned(file), "a.wv"), ElementsAre(damaged));
    for (const std::size_t zeros : {1U, 512U, 65'536U}) {
        EXPECT_THAT(kindsIn(withZeros(file, zeros), "a.wv"), ElementsAre(damaged)) << zeros;
    }
    const Finding found = findingOf(damaged, withBitTurned(file), "a.wv");
    EXPECT_LT(found.found.value_or(99), 9.8) << "without the block";
    EXPECT_GT(found.found.value_or(0), 9);
    EXPECT_THAT(findingsIn(made("wv", R"(ffmpeg -v error -i "$IN" "$OUT")"), "a.wv"), IsEmpty())
        << "without checksums";
    EXPECT_THAT(findingsIn(made("wv", R"(wavpack -q -y -hb256c "$IN" -o "$OUT")"), "a.wv"), IsEmpty());
}

TEST(CheckWavPack, KnowsSeveralChannels) {
    const std::string file = made("wv", {.frames = 96'000, .rate = 48'000, .channels = 6});
    EXPECT_THAT(findingsIn(file, "a.wv"), IsEmpty());
    EXPECT_THAT(kindsIn(withBitTurned(file), "a.wv"), ElementsAre(damaged));
}

TEST(CheckMusepack, FindsDamageInItsHeaderAndBetweenItsPackets) {
    const std::string file = made("mpc", tenSeconds);
    std::string bad = file;
    bad[file.find("SH") + 10] = static_cast<char>(bad[file.find("SH") + 10] ^ 1);
    EXPECT_THAT(kindsIn(bad, "a.mpc"), Contains(damaged));
    EXPECT_THAT(kindsIn(withZeros(file, 40'000), "a.mpc"), ElementsAre(damaged));
}

TEST(CheckMatroska, FindsDamageByItsChecksums) {
    const std::string file = made("mka", tenSeconds);
    EXPECT_THAT(kindsIn(withBitTurned(file), "a.mka"), ElementsAre(damaged));
    EXPECT_THAT(kindsIn(withZeros(file, 4'096), "a.mka"), ElementsAre(damaged));
}

TEST(CheckMatroska, FindsClocksThatDoNotStartAtZero) {
    const std::string file = made(
        "mka", R"(ffmpeg -v error -i "$IN" -c:a flac -output_ts_offset 5 -f matroska "$OUT")", tenSeconds);
    EXPECT_NEAR(findingOf(offset, file, "a.mka").found.value_or(0), 5, 0.1);
}

TEST(CheckMp4, FindsClocksOfFragmentsThatDoNotStartAtZero) {
    const std::string options =
        "-c:a aac -movflags +frag_keyframe+empty_moov+default_base_moof -frag_duration 1000000 -f mp4";
    EXPECT_THAT(
        findingsIn(made("m4a", "ffmpeg -v error -i \"$IN\" " + options + " \"$OUT\"", tenSeconds), "a.m4a"),
        IsEmpty());
    const std::string part = made(
        "m4a",
        R"sh(cd "$(dirname "$OUT")" && ffmpeg -v error -i "$IN" -c:a aac -f dash -seg_duration 2 all.mpd)sh"
        R"sh( && cat init-stream0.m4s chunk-stream0-00003.m4s > "$OUT")sh",
        tenSeconds);
    EXPECT_NEAR(findingOf(offset, part, "a.m4a").found.value_or(0), 4, 0.1) << "a part of a stream";
}

TEST(CheckMp4, FindsBlocksOfZerosInItsMedia) {
    const std::string file = made("m4a", tenSeconds);
    EXPECT_THAT(kindsIn(withZeros(file, 8'192), "a.m4a"), ElementsAre(damaged));
    const std::string pcm =
        made("m4a", R"(ffmpeg -v error -i "$IN" -c:a pcm_s16le -f mov "$OUT")", tenSeconds);
    EXPECT_THAT(findingsIn(pcm, "a.m4a"), IsEmpty()) << "its silence is zeros";
}

TEST(CheckAsf, FindsWhatItsDataObjectLacks) {
    const std::string file = made("wma", tenSeconds);
    EXPECT_THAT(findingsIn(file, "a.wma"), IsEmpty());
    for (const double part : {0.1, 0.5, 0.8}) {
        const Finding found = findingOf(truncated, cut(file, part), "a.wma");
        EXPECT_NEAR(found.stated.value_or(0), 10, 0.5);
        EXPECT_NEAR(found.found.value_or(0), 10 * (1 - part), 1) << part;
    }
    EXPECT_THAT(kindsIn(withZeros(file, 20'000), "a.wma"), ElementsAre(damaged));
    EXPECT_THAT(kindsIn(file + file, "a.wma"), ElementsAre(longer));
    EXPECT_THAT(kindsIn(file + noise(70'000), "a.wma"), ElementsAre(trailing));
}

TEST(CheckPcm, IsNotMisledByPlaceholders) {
    EXPECT_THAT(findingsIn(made("aiff", R"(cat "$IN" | sox -t wav - -t aiff - 2>/dev/null | cat > "$OUT")"),
                           "a.aiff"),
                IsEmpty());
    EXPECT_THAT(
        findingsIn(made("wav", R"(cat "$IN" | ffmpeg -v error -i - -f wav - | cat > "$OUT")"), "a.wav"),
        IsEmpty());
}

TEST(CheckFile, EndsWhereAFileShrinksWhileItIsRead) {
    for (const char* const extension : {"flac", "mp3", "ogg", "wv", "mpc", "mka", "m4a", "wav"}) {
        const fs::path path =
            write(freshFolder() / ("a." + std::string(extension)), made(extension, tenSeconds));
        bool isCut = false;
        const Checked checked = checkFile(path, {}, [&](std::int64_t) {
            if (!std::exchange(isCut, true)) {
                fs::resize_file(path, fs::file_size(path) / 3);
            }
        });
        EXPECT_EQ(checked.error, 0) << extension;
    }
}

TEST(CheckFile, EndsWhenItIsStopped) {
    std::stop_source stop;
    stop.request_stop();
    std::int64_t bytes = 0;
    checkFile(write(freshFolder() / "a.flac", made("flac", tenSeconds)), stop.get_token(),
              [&](std::int64_t more) { bytes += more; });
    EXPECT_EQ(bytes, 0);
}

TEST(CheckFile, ReadsEachByteAtMostTwice) {
    for (const char* const extension :
         {"flac", "mp3", "ogg", "opus", "wv", "mpc", "mka", "m4a", "wav", "aiff"}) {
        const std::string file = made(extension, {.frames = 3'000'000});
        std::int64_t bytes = 0;
        checkFile(write(freshFolder() / ("a." + std::string(extension)), file), {},
                  [&](std::int64_t more) { bytes += more; });
        EXPECT_GE(bytes, std::ssize(file) * 9 / 10) << extension;
        EXPECT_LE(bytes, 2 * std::ssize(file) + (64 << 10)) << extension;
    }
}

TEST(CheckFile, ReadsWhatIsMadeOfHeadersNoMoreOften) {
    const std::string page = "OggS" + zeros(22) + "\xFF" + times(5, "\xFF"); // of 64 KiB, by its first sizes
    const std::string flac = made("flac", R"(flac -s --no-padding -o "$OUT" "$IN")");
    const std::size_t frame = flac.find("\xFF\xF8", 4'000);
    const std::string frames = flac.substr(0, frame) + times(60'000, flac.substr(frame, 16));
    for (const std::string& file : {times(30'000, page), frames, times(250'000, "wvpk")}) {
        std::int64_t bytes = 0;
        checkFile(write(freshFolder() / "a", file), {}, [&](std::int64_t more) { bytes += more; });
        EXPECT_LE(bytes, 4 * std::ssize(file) + (1 << 20)) << file.substr(0, 4);
    }
}

TEST(CheckFile, HasNothingToSayOfWhatCannotBeOpened) {
    EXPECT_EQ(checkFile("/nowhere/a.flac"), Checked());
    EXPECT_EQ(checkFile(freshFolder()), Checked());
    EXPECT_EQ(checkFile(write(freshFolder() / "a.flac", "")), Checked());
}

} // namespace velmora::test
