// The program that says how a length was found, on a real file for each way.

#include "tests/measure/HeaderBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

std::string explained(const fs::path& file) {
    return shell(VELMORA_EXPLAIN " " + shellWord(file.native()), file.parent_path());
}

constexpr AudioShape twoSeconds{.frames = 88'200};

} // namespace

TEST(Explain, NamesTheHeaderReader) {
    const std::string text = explained(encodeAudio(freshFolder() / "a.wma", twoSeconds));
    EXPECT_THAT(text, HasSubstr("by the header reader of ASF: the header states it\n"));
    EXPECT_THAT(text, ContainsRegex("stated   2[.0-9]* s, believed\n"));
}

TEST(Explain, NamesOurOwnReaderAndWhatItRead) {
    const fs::path file = writeWav(freshFolder() / "a.wav", twoSeconds);
    const std::string text = explained(file);
    EXPECT_THAT(text, HasSubstr(file.native() + "\n  length   2 s\n"));
    EXPECT_THAT(text, HasSubstr("by our own reader of WAV: "));
    EXPECT_THAT(text, HasSubstr("sound    44100 Hz, channels: 2\n"));
    EXPECT_THAT(text, ContainsRegex("read     [1-9][0-9]* of " + std::to_string(fs::file_size(file)) +
                                    " bytes; of the search's budget [1-9][0-9]* bytes were left\n"));
}

TEST(Explain, CountsTheFramesOfAStreamThatStatesNothing) {
    const std::string text = explained(encodeAudio(freshFolder() / "a.aac", twoSeconds));
    EXPECT_THAT(text, ContainsRegex("by our own reader of AAC: frames or packets were counted"));
}

TEST(Explain, NamesLibavformatAndItsDoubt) {
    const std::string text = explained(encodeAudio(freshFolder() / "a.ra", twoSeconds));
    EXPECT_THAT(text, ContainsRegex("by libavformat in RealMedia: frames or packets were counted, "
                                    "[1-9][0-9]* of them\n"));
    EXPECT_THAT(text, ContainsRegex("stated   2[.0-9]* s, not believed: "));
}

TEST(Explain, NamesFfprobe) {
    const fs::path one = writeWav(freshFolder() / "a.wav", {.frames = 8, .rate = 8'000, .channels = 1});
    const std::string text = explained(one);
    EXPECT_THAT(text, HasSubstr("length   0.001 s\n"));
    EXPECT_THAT(text, HasSubstr("; ffprobe was asked, and timed it\n"));
    const std::string noise = explained(write(freshFolder() / "a.wav", Bytes(5'000, 0xA5)));
    EXPECT_THAT(noise, HasSubstr("length   not known\n"));
    EXPECT_THAT(noise, HasSubstr("; ffprobe was asked, and could not time it\n"));
}

TEST(Explain, SaysWhyThereIsNoLength) {
    const fs::path folder = freshFolder();
    const std::string silent = explained(writeWav(folder / "empty.wav", {.frames = 0}));
    EXPECT_THAT(silent, HasSubstr("WAV, in which nothing plays\n"));
    EXPECT_THAT(silent, HasSubstr("length   not known\n  why      no audio frames\n"));
    EXPECT_THAT(explained(write(folder / "list.mp3", "ffconcat version 1.0\nfile neighbour.wav\n")),
                HasSubstr("no audio; libavformat would open it with its demuxer concat\n"));
    EXPECT_THAT(explained(folder / "missing.mp3"), HasSubstr("not opened: "));
}

TEST(Explain, SaysHowItIsUsed) {
    EXPECT_THAT(shell(VELMORA_EXPLAIN " 2>&1 || echo $?", freshFolder()),
                testing::AllOf(HasSubstr("usage: "), HasSubstr("2\n")));
}

} // namespace velmora::test
