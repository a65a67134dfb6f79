// MP4 whole, in fragments, cut off, and with headers and tables that say different things.

#include "tests/measure/MediaBytes.h"
#include "tests/measure/TwelveSeconds.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velmora::test {

namespace {

using namespace std::string_literals;

constexpr int mdhdScaleAt = 16; // from the type of the box, in version 0
constexpr int mdhdDurationAt = 20;

/// Twelve seconds of AAC with the index first.
std::string indexedFirst() {
    return encoded("m4a", R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart -f ipod "$OUT")");
}

/// `file` with the number of four bytes at `offset` from the type of its first box `type` replaced.
std::string withNumber(std::string file, std::string_view type, int offset, std::uint32_t number) {
    return file.replace(file.find(type) + static_cast<std::size_t>(offset), 4, be(number, 4));
}

/// What iTunes notes of the samples around the sound.
std::string primingNote(const std::string& numbers) {
    return mp4Box(
        "udta",
        mp4Box("meta",
               zeros(4) + mp4Box("ilst", mp4Box("----", mp4Box("mean", zeros(4) + "com.apple.iTunes") +
                                                            mp4Box("name", zeros(4) + "iTunSMPB") +
                                                            mp4Box("data", be(1, 4) + zeros(4) + numbers)))));
}

constexpr std::uint32_t chunkFrames = 10;
constexpr std::uint32_t frameBytes = 10;

/// A movie of one track of `chunks` chunks of AAC frames at 44.1 kHz, the first `present` of which are there,
/// without edits, with `note` after the track.
std::string withoutEdits(std::uint32_t chunks, std::uint32_t present, const std::string& note) {
    const std::string brand = mp4Box("ftyp", "M4A " + zeros(4));
    const std::uint32_t frames = chunks * chunkFrames;
    std::string offsets;
    for (std::uint32_t chunk = 0; chunk < chunks; ++chunk) {
        offsets += be(10'000 + chunk * chunkFrames * frameBytes, 4);
    }
    const auto table = [](std::string_view type, const std::string& content) {
        return mp4Box(type, zeros(4) + content);
    };
    const std::string samples =
        mp4Box("stbl", table("stts", be(1, 4) + be(frames, 4) + be(1'024, 4)) +
                           table("stsc", be(1, 4) + be(1, 4) + be(chunkFrames, 4) + be(1, 4)) +
                           table("stsz", be(frameBytes, 4) + be(frames, 4)) +
                           table("stco", be(chunks, 4) + offsets));
    const std::string media =
        mp4Box("mdia", table("mdhd", zeros(8) + be(44'100, 4) + be(frames * 1'024, 4) + zeros(4)) +
                           table("hdlr", zeros(4) + "soun" + zeros(12)) + mp4Box("minf", samples));
    const std::string header = table("mvhd", zeros(8) + be(600, 4) + zeros(84));
    const std::string head = brand + mp4Box("moov", header + mp4Box("trak", media) + note);
    return head + mp4Box("free", zeros(10'000 - head.size() - 16)) +
           mp4Box("mdat", times(present * chunkFrames * frameBytes, "x"));
}

} // namespace

TEST(Mp4, PlaysWhatItsEditsLeave) {
    for (const char* const options : {"-f ipod", "-movflags faststart -f ipod", "-f mov", "-f 3gp"}) {
        const std::string command =
            std::string(R"(ffmpeg -v error -y -i "$IN" -c:a aac )") + options + R"( "$OUT")";
        EXPECT_NEAR(secondsOf(encoded("m4a", command)), twelveSeconds.seconds(), 0.001) << options;
    }
    EXPECT_NEAR(secondsOf(encoded("alac")), twelveSeconds.seconds(), 1e-6);
}

TEST(Mp4, AddsFragments) {
    const std::string command =
        R"(ffmpeg -v error -y -i "$IN" -c:a aac -frag_duration 1000000 -f mp4 -movflags )";
    for (const char* const flags : {"empty_moov", "empty_moov+default_base_moof", "empty_moov+delay_moov"}) {
        const std::string file = encoded("m4a", command + flags + R"( "$OUT")");
        EXPECT_NEAR(secondsOf(file), twelveSeconds.seconds(), 0.03)
            << flags << ": the last frame is filled up";
        const std::string half = file.substr(0, file.size() / 2);
        EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.6) << flags << ": a fragment is a second";
    }
}

TEST(Mp4, ThatIsCutOffIsTheSamplesThatAreThere) {
    const std::string command = R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart -f ipod "$OUT")";
    const std::string file = encoded("m4a", command);
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.025);
    EXPECT_LT(secondsOf(half), twelveSeconds.seconds() * 0.7);
}

TEST(Mp4, WhoseSoundIsMissingAltogetherPlaysNothing) {
    const std::string command = R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart -f ipod "$OUT")";
    const std::string file = encoded("m4a", command);
    EXPECT_TRUE(is<NothingPlays>(answerFor(file.substr(0, file.find("mdat") - 4), "track.m4a")));
}

TEST(Mp4, WithVideoAlonePlaysNothing) {
    const fs::path folder = freshFolder();
    shell("ffmpeg -v error -f lavfi -i testsrc=d=1:s=64x64 v.mp4; ffmpeg -v error -f lavfi -i "
          "testsrc=d=1:s=64x64 v.mkv",
          folder);
    for (const char* const name : {"v.mp4", "v.mkv"}) {
        EXPECT_TRUE(is<NothingPlays>(answerFor(read(folder / name), "track.m4a"))) << name;
    }
}

TEST(Mp4, BelievesItsTablesMoreThanItsHeader) {
    const std::string file = indexedFirst();
    const std::string plain = file.substr(0, file.find("edts")) + "free" + file.substr(file.find("edts") + 4);
    const double seconds = secondsOf(plain);
    EXPECT_NEAR(seconds, twelveSeconds.seconds(), 0.05) << "without its edits";
    EXPECT_NEAR(secondsOf(withNumber(plain, "mdhd", mdhdDurationAt, 44'100 * 4)), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(withNumber(plain, "mdhd", mdhdDurationAt, 44'100 * 40)), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(withNumber(plain, "mdhd", mdhdDurationAt, 0)), seconds, 1e-9);
}

TEST(Mp4, TakesTheMoviesTimeScaleWhereTheTrackHasNone) {
    const std::string file = withoutEdits(10, 10, "");
    const double seconds = 100 * 1'024 / 44'100.0;
    EXPECT_NEAR(secondsOf(file), seconds, 1e-9);
    EXPECT_NEAR(secondsOf(withNumber(file, "mdhd", mdhdScaleAt, 0)), 100 * 1'024 / 600.0, 1e-9);
}

TEST(Mp4, HoldsNoSampleBeyondItsEnd) {
    const auto seconds = [](std::uint32_t chunks) { return chunks * chunkFrames * 1'024 / 44'100.0; };
    EXPECT_NEAR(secondsOf(withoutEdits(50, 50, "")), seconds(50), 1e-9);
    EXPECT_NEAR(secondsOf(withoutEdits(50, 7, "")), seconds(7), 1e-9)
        << "although the box of media data claims no more than there is";
}

TEST(Mp4, HoldsNoSampleBeyondItsEndInItsOnlyChunk) {
    constexpr std::uint32_t frames = 676'000; // 15,697 seconds
    std::string stub = withoutEdits(1, 1, "");
    EXPECT_NEAR(secondsOf(stub), chunkFrames * 1'024 / 44'100.0, 1e-9);
    stub = withNumber(stub, "mdhd", mdhdDurationAt, frames * 1'024);
    stub = withNumber(withNumber(stub, "stts", 12, frames), "stsc", 16, frames);
    stub = withNumber(stub, "stsz", 12, frames);
    EXPECT_NEAR(secondsOf(stub), chunkFrames * 1'024 / 44'100.0, 1e-9) << "of one size";
    EXPECT_NEAR(secondsOf(withNumber(stub, "mdhd", mdhdDurationAt, 0)), chunkFrames * 1'024 / 44'100.0, 1e-9)
        << "as the sample table alone states";

    const std::string file = indexedFirst();
    const std::size_t data = file.find("mdat") - 4;
    const std::string few = withNumber(file.substr(0, data + 3'000), "mdat", -4, 3'000);
    EXPECT_NEAR(secondsOf(few), decodedSeconds(few), 0.05) << "of many sizes";
    EXPECT_LT(secondsOf(few), 1);
}

TEST(Mp4, WhoseMediaDataStateNoSizeIsCutWhereTheFileEnds) {
    const std::string file = withNumber(indexedFirst(), "mdat", -4, 0);
    EXPECT_NEAR(secondsOf(file), twelveSeconds.seconds(), 0.001);
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.05);
    EXPECT_LT(secondsOf(half), twelveSeconds.seconds() * 0.7);
}

TEST(Mp4, LeavesOutWhatTheEncoderAdded) {
    constexpr double rate = 44'100;
    const auto seconds = [](const std::string& note) {
        return secondsOf(withoutEdits(10, 10, primingNote(note)));
    };
    // 102,400 samples: 2,112 of priming, 100,000 of sound, 288 of padding
    EXPECT_NEAR(seconds(" 00000000 00000840 00000120 00000000000186A0 00000000 00000000"), 100'000 / rate,
                1e-9);
    EXPECT_NEAR(seconds(" 00000000 00000840 00000920 0000000000030D40 00000000"), 100'000 / rate, 1e-9)
        << "in samples of twice the rate";
    EXPECT_NEAR(seconds(" 00000000 00000840 00000120 0000000000FFFFFF"), 102'400 / rate, 1e-9)
        << "the note of another file";
    EXPECT_NEAR(seconds(" 00000000 0000"), 102'400 / rate, 1e-9) << "no note at all";
    const std::string edited = indexedFirst();
    EXPECT_NEAR(secondsOf(edited), twelveSeconds.seconds(), 0.001) << "edits say it already";
}

} // namespace velmora::test
