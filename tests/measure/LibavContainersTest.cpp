// Containers that libavformat reads: what they state of their sound, and their packets where they state
// nothing.

#include "measure/bytes/GuardedReader.h"
#include "tests/measure/HeaderBytes.h"
#include "tests/measure/MediaBytes.h"
#include "tests/measure/TwelveSeconds.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

namespace {

/// Makes Matroska whose subtitles last longer than its sound.
const std::string subtitled = R"(printf '1\n00:00:58,000 --> 00:01:00,000\nlate\n' | )"
                              R"(ffmpeg -v error -i "$IN" -f srt -i - -c:s srt )";

/// `file`, Matroska, as if its writer had noted the length of no single track.
std::string withoutTrackNotes(std::string file) {
    constexpr std::string_view note = "DURATION";
    for (std::size_t at = 0; (at = file.find(note, at)) != std::string::npos;) {
        file.replace(at, note.size(), "PURPOSES");
    }
    return file;
}

} // namespace

TEST(Matroska, IsWalkedWhereItsStatementIsMissingOrFalse) {
    EXPECT_NEAR(secondsOf(encoded("mka")), twelveSeconds.seconds(), 0.001);
    for (const char* const codec : {"flac", "libopus", "pcm_s16le"}) {
        const std::string command =
            std::string(R"(ffmpeg -v error -i "$IN" -f matroska -c:a )") + codec + R"( - | cat > "$OUT")";
        EXPECT_NEAR(secondsOf(encoded("mka", command)), twelveSeconds.seconds(), 0.002) << codec;
    }
    const std::string file = encoded("mka");
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.1);
}

TEST(Matroska, IsWalkedWhereItsUnitOfTimeCannotBeRead) {
    std::string file = encoded("mka");
    const std::size_t scale = file.find("\x2A\xD7\xB1\x83");
    ASSERT_NE(scale, std::string::npos);
    file.replace(scale, 7, "\x2A\xD7\xB1\x80\xEC\x81\x01"); // without content, and something to pass over
    EXPECT_NEAR(secondsOf(file), twelveSeconds.seconds(), 0.001);
}

TEST(Matroska, IsAsLongAsItsSoundWhateverElseIsInIt) {
    const std::string picture = R"(ffmpeg -v error -i "$IN" -f lavfi -i testsrc=s=64x64:d=)";
    for (const std::string& command :
         {subtitled + R"(-c:a flac "$OUT")", picture + R"(20 -c:v mpeg4 -c:a pcm_s16le "$OUT")",
          picture + R"(2 -c:v mpeg4 -c:a aac "$OUT")"}) {
        const std::string file = encoded("mka", command);
        EXPECT_NEAR(secondsOf(file), twelveSeconds.seconds(), 0.03) << command;
        EXPECT_NEAR(secondsOf(withoutTrackNotes(file)), twelveSeconds.seconds(), 0.03) << command;
    }
}

TEST(Matroska, ThatWasCutOutOfAnotherIsWhatItHolds) {
    for (const std::string codec : {"flac", "libmp3lame", "aac", "libopus"}) {
        const std::string command = R"(ffmpeg -v error -i "$IN" -c:a )" + codec +
                                    R"( -f segment -segment_time 4 "$OUT.%d.mka" && cp "$OUT.1.mka" "$OUT")";
        const std::string part = encoded("mka", command);
        EXPECT_NEAR(secondsOf(part), 4, 0.1) << codec;
        EXPECT_NEAR(secondsOf(part), decodedSeconds(part), 0.03) << codec;
    }
}

TEST(Matroska, WithoutNotesOfItsTracksIsReadAtItsEndAlone) {
    const std::string file = withoutTrackNotes(encoded("mka", subtitled + R"(-c:a pcm_s16le "$OUT")"));
    const Bytes content(file.begin(), file.end());
    std::vector<Read> reads;
    const MediaAnswer answer = mediaDuration(counted(content, reads), "track.mka", {}).answer;
    EXPECT_NEAR(secondsIn(answer), twelveSeconds.seconds(), 0.001);
    EXPECT_LE(bytesIn(reads), std::ssize(file) / 2);
}

TEST(RealMedia, IsWalkedWhereNothingIsStated) {
    EXPECT_NEAR(secondsOf(encoded("ra")), twelveSeconds.seconds(), 0.04);
    const std::string aac = encoded("ra", R"(ffmpeg -v error -i "$IN" -c:a aac -f rm "$OUT")");
    EXPECT_NEAR(secondsOf(aac), decodedSeconds(aac), 1e-6);
    const std::string command =
        R"(ffmpeg -v error -i "$IN" -ar 8000 -ac 1 -c:a real_144 -f rm - | cat > "$OUT")";
    EXPECT_NEAR(secondsOf(encoded("ra", command)), twelveSeconds.seconds(), 0.05);
}

TEST(RealMedia, AndFlashVideoPlayFilesThatWereJoinedOneAfterTheOther) {
    for (const char* const command : {
             R"(ffmpeg -v error -y -i "$IN" -c:a ac3 -f rm "$OUT")",
             R"(ffmpeg -v error -y -i "$IN" -c:a aac -f rm "$OUT")",
             R"(ffmpeg -v error -y -i "$IN" -ar 8000 -ac 1 -c:a real_144 -f rm "$OUT")",
             R"(ffmpeg -v error -y -i "$IN" -c:a aac -f flv "$OUT")",
             R"(ffmpeg -v error -y -i "$IN" -f lavfi -i testsrc=s=64x64:d=2 -c:a libmp3lame -f flv "$OUT")",
         }) {
        const std::string file = encoded("mp3", command);
        const double once = secondsOf(file);
        EXPECT_NEAR(once, twelveSeconds.seconds(), 0.06) << command;
        EXPECT_NEAR(secondsOf(file + file), 2 * once, 1e-6) << command;
        EXPECT_NEAR(secondsOf(file + file + file), 3 * once, 1e-6) << command;
        EXPECT_NEAR(secondsOf(file + zeros(9'000)), once, 0.1) << command;
    }
}

TEST(OtherContainers, AreReadUnderAnyName) {
    for (const char* const command :
         {R"(ffmpeg -v error -y -i "$IN" -c:a libmp3lame -f avi "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a mp2 -f mpegts "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a aac -f latm "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a aac -f flv "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a ac3 -f ac3 "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a tta -f tta "$OUT")", R"(oggenc -Q "$IN" -o "$OUT")"}) {
        EXPECT_NEAR(secondsOf(encoded("mp3", command)), twelveSeconds.seconds(), 0.06) << command;
    }
}

TEST(OtherContainers, PlayRecordingsThatWereJoinedOneAfterTheOther) {
    const std::string stream =
        encoded("mp3", R"(ffmpeg -v error -y -i "$IN" -c:a mp2 -b:a 384k -f mpegts "$OUT")");
    const std::string live =
        encoded("mka", R"(ffmpeg -v error -i "$IN" -c:a libopus -f webm - | cat > "$OUT")");
    for (const std::string& recording : {stream, live}) {
        const double once = secondsOf(recording);
        EXPECT_NEAR(once, twelveSeconds.seconds(), 0.06);
        EXPECT_NEAR(secondsOf(recording + recording), 2 * once, 0.01) << "its time stamps jump back";
    }
    const std::string later = encoded(
        "mp3", R"(ffmpeg -v error -y -i "$IN" -c:a mp2 -b:a 384k -output_ts_offset 50000 -f mpegts "$OUT")");
    for (const std::string& joined : {stream + later, later + stream}) {
        EXPECT_NEAR(secondsOf(joined), 2 * secondsOf(stream), 0.01) << "its time stamps jump";
    }
    const auto copies = static_cast<std::size_t>(GuardedReader::searchBytes) / stream.size() + 1;
    EXPECT_NEAR(secondsOf(times(copies, stream)), static_cast<double>(copies) * secondsOf(stream), 0.1)
        << "more bytes than a search may read without finding anything";
}

TEST(OtherContainers, PlayPacketsOneAfterTheOtherWhereTimeStampsOverlap) {
    for (const char* const codec : {"mp2", "ac3"}) {
        const std::string command = std::string(R"(ffmpeg -v error -y -i "$IN" -c:a )") + codec +
                                    R"( -bsf:a setts=ts=TS/2 -f mpegts "$OUT")";
        EXPECT_NEAR(secondsOf(encoded("mp3", command)), twelveSeconds.seconds(), 0.06) << codec;
    }
}

TEST(OtherContainers, BelieveNoLengthsThatAreGuessedFromABitRate) {
    std::string file =
        encoded("mp3", R"(ffmpeg -v error -y -i "$IN" -c:a wmav2 -b:a 128k -f asf - | cat > "$OUT")");
    const std::string format = le(0x161, 2) + le(2, 2) + le(44'100, 4);
    file.replace(file.find(format) + format.size(), 4, le(6'000, 4)); // bytes a second, 16,000 in truth
    EXPECT_NEAR(secondsOf(file), twelveSeconds.seconds(), 0.2);
}

} // namespace velmora::test
