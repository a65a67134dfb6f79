// MPEG audio and ADTS whole, cut off, damaged, joined, with lengths that lie.

#include "tests/measure/MediaBytes.h"
#include "tests/measure/check/Checking.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using enum FindingKind;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

std::string mp3(const std::string& options) {
    return made("mp3", "lame --quiet " + options + R"( "$IN" "$OUT")", tenSeconds);
}

/// An ID3v2 tag whose frame TLEN states `milliseconds`.
std::string tagOfLength(char version, const std::string& milliseconds) {
    const std::string text = "\0"s + milliseconds;
    const std::string frame =
        version == 2 ? "TLE" + be(text.size(), 3) + text : "TLEN" + be(text.size(), 4) + zeros(2) + text;
    const std::string frames =
        (version == 2 ? "TT2" + be(3, 3) : "TIT2" + be(3, 4) + zeros(2)) + "\0ab"s + frame;
    return "ID3"s + version + zeros(2) + be(frames.size() + 20, 4) + frames + zeros(20);
}

} // namespace

TEST(CheckFrames, FindsNothingInWhatEncodersMake) {
    for (const char* const options :
         {"-b 128", "-V 4", "--abr 96", "-t -b 128", "-t -V 6", "-p -b 160", "--freeformat -b 400"}) {
        EXPECT_THAT(findingsIn(mp3(options), "a.mp3"), IsEmpty()) << options;
    }
    EXPECT_THAT(findingsIn(made("mp2", R"(twolame --quiet -p "$IN" "$OUT" >/dev/null)"), "a.mp2"), IsEmpty());
    EXPECT_THAT(findingsIn(made("mp3", R"(ffmpeg -v error -i "$IN" -metadata title=a -write_id3v1 1 "$OUT")"),
                           "a.mp3"),
                IsEmpty());
    EXPECT_THAT(findingsIn(made("aac"), "a.aac"), IsEmpty());
    EXPECT_THAT(findingsIn("some bytes" + mp3("-t"), "a.mp3"), IsEmpty()) << "before the first frame";
}

TEST(CheckFrames, FindsWhatIsCutOffByWhatTheFirstFrameStates) {
    const std::string file = mp3("-V 4");
    for (const double part : {0.05, 0.5, 0.9}) {
        const Finding found = findingOf(truncated, cut(file, part), "a.mp3");
        EXPECT_NEAR(found.stated.value_or(0), tenSeconds.seconds(), 1e-6) << part;
        EXPECT_NEAR(found.found.value_or(0), tenSeconds.seconds() * (1 - part), 2.5) << part;
        EXPECT_THAT(kindsIn(cut(file, part), "a.mp3"), ElementsAre(truncated)) << part;
    }
}

TEST(CheckFrames, FindsWhatIsCutOffInsideAFrame) {
    for (const std::string& file : {mp3("-t"), made("aac", tenSeconds)}) {
        const Finding found = findingOf(truncated, file.substr(0, file.size() - 50), "a.mp3");
        EXPECT_EQ(found.stated, std::nullopt);
        EXPECT_NEAR(found.found.value_or(0), tenSeconds.seconds(), 0.1);
    }
}

TEST(CheckFrames, FindsMoreThanIsStated) {
    const Finding found = findingOf(longer, mp3("-V 4") + mp3("-V 4"), "a.mp3");
    EXPECT_NEAR(found.stated.value_or(0), 10, 1e-6);
    EXPECT_NEAR(found.found.value_or(0), 20, 0.1);
    EXPECT_THAT(findingsIn(mp3("-t") + mp3("-t"), "a.mp3"), IsEmpty()) << "nothing is stated";
    EXPECT_THAT(findingsIn(mp3("-t") + "TAG" + zeros(125) + mp3("-t"), "a.mp3"), IsEmpty()) << "a tag";
}

TEST(CheckFrames, HoldsTheLengthInTheTagAgainstTheFrames) {
    const std::string bare = mp3("-t");
    for (const char version : {'\2', '\3', '\4'}) {
        EXPECT_THAT(findingsIn(tagOfLength(version, "10000") + bare, "a.mp3"), IsEmpty());
        EXPECT_THAT(findingsIn(tagOfLength(version, "11000") + bare, "a.mp3"), IsEmpty()) << "rounded";
        EXPECT_NEAR(findingOf(truncated, tagOfLength(version, "16000") + bare, "a.mp3").stated.value_or(0),
                    16, 1e-9);
        EXPECT_NEAR(findingOf(longer, tagOfLength(version, "4000") + bare, "a.mp3").stated.value_or(0), 4,
                    1e-9);
    }
}

TEST(CheckFrames, FindsWhatStandsBetweenFrames) {
    for (const std::string& file : {mp3("-b 128"), mp3("-t"), made("aac", tenSeconds)}) {
        for (const std::size_t count : {512U, 4'096U, 20'000U}) {
            EXPECT_THAT(kindsIn(withZeros(file, count), "a.mp3"), testing::Contains(damaged)) << count;
        }
        std::string more = file;
        more.insert(file.size() / 2, noise(3'000));
        EXPECT_THAT(kindsIn(more, "a.mp3"), testing::Contains(damaged));
    }
}

TEST(CheckFrames, FindsWrongChecksums) {
    const std::string file = mp3("-p -b 128");
    std::string bad = file;
    for (std::size_t at = file.size() / 2; at < file.size(); ++at) { // the header of a frame with a checksum
        if (bad[at] == '\xFF' && bad[at + 1] == '\xFA' && bad[at + 2] == file[2]) {
            bad[at + 10] = static_cast<char>(bad[at + 10] ^ 4); // in its side information
            break;
        }
    }
    ASSERT_NE(file, bad);
    EXPECT_THAT(kindsIn(bad, "a.mp3"), ElementsAre(damaged));
    EXPECT_NEAR(findingOf(damaged, bad, "a.mp3").found.value_or(0), 10 - 1'152 / 44'100.0, 0.01);
}

TEST(CheckFrames, FindsWhatTrails) {
    EXPECT_THAT(kindsIn(mp3("-b 128") + zeros(70'000), "a.mp3"), ElementsAre(trailing));
    EXPECT_THAT(findingsIn(mp3("-b 128") + zeros(60'000), "a.mp3"), IsEmpty());
}

TEST(CheckFrames, FindsForeignContent) {
    EXPECT_THAT(kindsIn(mp3("-b 128"), "a.flac"), ElementsAre(foreign));
    EXPECT_THAT(kindsIn(made("aac"), "a.mp3"), ElementsAre(foreign));
    EXPECT_THAT(kindsIn(made("m4a"), "a.mp3"), ElementsAre(foreign));
    EXPECT_THAT(findingsIn(made("m4a"), "a.aac"), IsEmpty()) << "both are in use";
    EXPECT_THAT(findingsIn(made("m4a"), "a.M4B"), IsEmpty());
    EXPECT_THAT(findingsIn(noise(50'000), "a.mp3"), IsEmpty()) << "what is not recognised is not named";
}

} // namespace velmora::test
