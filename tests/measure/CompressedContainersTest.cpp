// Formats that state their length, count it, or number their frames: real files whole and cut off, and
// headers built from bytes where there is no encoder.

#include "measure/HeaderBytes.h"
#include "measure/MediaBytes.h"
#include "support/Files.h"
#include "support/RealAudio.h"
#include "support/Shell.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

namespace {

using namespace std::string_literals;

const AudioShape shape{.frames = 529'977};

/// The bytes that `command` makes of twelve seconds of sound.
std::string encoded(std::string_view extension, std::string_view command) {
    return read(encodeAudio(freshFolder() / ("track." + std::string(extension)), command, shape));
}

std::string encoded(std::string_view extension) {
    return read(encodeAudio(freshFolder() / ("track." + std::string(extension)), shape));
}

/// What a general decoder makes of `bytes`, in seconds: 44.1 kHz, 16 bits, stereo.
double decodedSeconds(const std::string& bytes) {
    const fs::path folder = freshFolder();
    write(folder / "in", bytes);
    const std::string count =
        shell("ffmpeg -v quiet -i in -map 0:a:0 -f s16le -ar 44100 -ac 2 - | wc -c", folder);
    return std::stod(count) / 4 / 44'100;
}

std::string apeFile(std::size_t frames, std::uint32_t lastBlocks) {
    std::string table;
    constexpr std::size_t firstFrame = 52 + 24;
    for (std::size_t i = 0; i < frames; ++i) {
        table += le(firstFrame + frames * 4 + i * 1000, 4);
    }
    return "MAC " + le(3990, 2) + le(0, 2) + le(52, 4) + le(24, 4) + le(frames * 4, 4) + le(0, 4) +
           le(frames * 1000, 4) + zeros(8) + zeros(16) + le(2000, 2) + le(0, 2) + le(73'728, 4) +
           le(lastBlocks, 4) + le(frames, 4) + le(16, 2) + le(2, 2) + le(44'100, 4) + table +
           times(frames * 1000, "x");
}

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

/// A packet of Musepack's stream version 8.
std::string musepackPacket(std::string_view key, std::string_view content) {
    const std::size_t size = content.size() + 4;
    return std::string(key) + be(0x80 | size >> 7, 1) + be(size & 0x7F, 1) + std::string(content);
}

} // namespace

TEST(Flac, IsItsSamplesWhateverItsHeaderSays) {
    EXPECT_NEAR(secondsOf(encoded("flac")), shape.seconds(), 1e-9);
    const std::string piped = encoded("flac", R"(cat "$IN" | flac -s - -c 2>/dev/null | cat > "$OUT")");
    EXPECT_NEAR(secondsOf(piped), shape.seconds(), 1e-9);
    std::string unstated = encoded("flac");
    unstated[8 + 13] = static_cast<char>(unstated[8 + 13] & 0xF0);
    unstated.replace(8 + 14, 4, zeros(4));
    EXPECT_NEAR(secondsOf(unstated), shape.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(unstated + "TAG" + zeros(125)), shape.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf("ID3\x04"s + zeros(5) + be(0x64, 1) + zeros(100) + unstated), shape.seconds(),
                1e-9);
}

TEST(Flac, ThatIsCutOffIsItsWholeFrames) {
    const std::string file = encoded("flac", R"(flac -s -5 -o "$OUT" "$IN")");
    for (const std::size_t part : {3U, 4U, 7U}) {
        const std::string half = file.substr(0, file.size() / 8 * part);
        EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 1e-6) << part;
    }
    EXPECT_TRUE(answerFor(file.substr(0, 1'000)).isForeign) << "nothing but a statement";
}

TEST(WavPack, IsItsSamplesWhateverItsHeaderSays) {
    const std::string file = encoded("wv");
    EXPECT_NEAR(secondsOf(file), shape.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(encoded("wv", R"(wavpack -q -b4 "$IN" -o "$OUT")")), shape.seconds(), 1e-9)
        << "hybrid";
    std::string unstated = file;
    unstated.replace(12, 4, times(4, "\xFF"));
    EXPECT_NEAR(secondsOf(unstated), shape.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(encoded("wv", R"(ffmpeg -v error -i "$IN" -f wv - | cat > "$OUT")")),
                shape.seconds(), 1e-9);
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.6) << "a block is half a second";
    EXPECT_LT(secondsOf(half), shape.seconds() * 0.7);
}

TEST(Ape, IsItsFramesByItsRate) {
    EXPECT_NEAR(secondsOf(apeFile(20, 500)), (19 * 73'728 + 500) / 44'100.0, 1e-9);
    const std::string whole = apeFile(20, 500);
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() - 9'500)), 10 * 73'728 / 44'100.0, 1e-9) << "cut off";
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() - 10'000)), 10 * 73'728 / 44'100.0, 1e-9)
        << "cut off between two frames";
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() - 10'001)), 9 * 73'728 / 44'100.0, 1e-9);
    const std::string old = "MAC " + le(3970, 2) + le(2000, 2) + le(0, 2) + le(2, 2) + le(44'100, 4) +
                            zeros(8) + le(3, 4) + le(100, 4) + zeros(2'000);
    EXPECT_NEAR(secondsOf(old), (2 * 294'912 + 100) / 44'100.0, 1e-9);
}

TEST(Caf, IsAsLongAsItsLastPacketSays) {
    for (const std::string codec : {"flac", "alac"}) {
        for (const std::int64_t frames : {std::int64_t{1}, std::int64_t{8 * 4096}, shape.frames}) {
            const AudioShape one{.frames = frames};
            const fs::path path =
                encodeAudio(freshFolder() / "track.caf",
                            "ffmpeg -v error -i \"$IN\" -f caf -c:a " + codec + " \"$OUT\"", one);
            EXPECT_NEAR(secondsOf(read(path)), one.seconds(), 1e-9) << codec << ", " << frames << " frames";
        }
    }
}

TEST(Caf, WhoseLastPacketIsDamagedIsWhatItsTableStates) {
    for (const std::string codec : {"flac", "alac"}) {
        const std::string file =
            encoded("caf", "ffmpeg -v error -i \"$IN\" -f caf -c:a " + codec + " \"$OUT\"");
        const std::size_t table = file.rfind("pakt");
        const std::string damaged = file.substr(0, table - 9'000) + times(9'000, "\xFF") + file.substr(table);
        EXPECT_GT(secondsOf(damaged), shape.seconds() + 0.01) << codec << ": counted as full";
        EXPECT_LT(secondsOf(damaged), shape.seconds() + 0.2) << codec;
    }
}

TEST(Musepack, IsWhatItStates) {
    EXPECT_NEAR(secondsOf(encoded("mpc")), shape.seconds(), 1e-9);
    const auto version7 = [](std::uint32_t frames, std::uint32_t last) {
        return "MP+\x07" + le(frames, 4) + le(0x00010000, 4) + zeros(8) + le(last, 4) + zeros(4) +
               zeros(1'000);
    };
    EXPECT_NEAR(secondsOf(version7(100, 1U << 31 | 200U << 20)), (99 * 1152 + 200) / 48'000.0, 1e-9);
    EXPECT_NEAR(secondsOf(version7(100, 0)), (100 * 1152 - 481) / 48'000.0, 1e-9);
}

TEST(Musepack, OfVersion8WithoutItsEndIsThePacketsThatAreThere) {
    const auto stream = [](std::uint32_t samples) {
        const std::string header = zeros(4) + "\x08" + be(0x80 | samples >> 14, 1) +
                                   be(0x80 | (samples >> 7 & 0x7F), 1) + be(samples & 0x7F, 1) + "\x64" +
                                   "\x20" + "\x12"; // 100 samples to leave out, 48 kHz, 16 frames a packet
        return "MPCK" + musepackPacket("SH", header) + musepackPacket("RG", zeros(9)) +
               times(10, musepackPacket("AP", zeros(996)));
    };
    const auto seconds = [](std::int64_t samples) { return static_cast<double>(samples - 100) / 48'000; };
    constexpr std::int64_t packet = 16 * 1152;
    constexpr std::uint32_t stated = 9 * packet + 500;
    const std::string file = stream(stated);
    EXPECT_NEAR(secondsOf(file + "SE\x03"), seconds(stated), 1e-9);
    EXPECT_NEAR(secondsOf(stream(2 * packet) + "SE\x03" + "TAG" + zeros(125)), seconds(2 * packet), 1e-9)
        << "believed where the end is";
    EXPECT_NEAR(secondsOf(file), seconds(stated), 1e-9);
    EXPECT_NEAR(secondsOf(stream(2 * packet)), seconds(2 * packet), 1e-9);
    EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 4'000)), seconds(6 * packet), 1e-9);
    EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 3'999)), seconds(6 * packet), 1e-9);
    EXPECT_NEAR(secondsOf(stream(0) + "SE\x03"), seconds(10 * packet), 1e-9) << "not known when it began";
}

TEST(Mp4, PlaysWhatItsEditsLeave) {
    for (const char* const options : {"-f ipod", "-movflags faststart -f ipod", "-f mov", "-f 3gp"}) {
        const std::string command =
            std::string(R"(ffmpeg -v error -y -i "$IN" -c:a aac )") + options + R"( "$OUT")";
        EXPECT_NEAR(secondsOf(encoded("m4a", command)), shape.seconds(), 0.001) << options;
    }
    EXPECT_NEAR(secondsOf(encoded("alac")), shape.seconds(), 1e-6);
}

TEST(Mp4, AddsFragments) {
    const std::string command =
        R"(ffmpeg -v error -y -i "$IN" -c:a aac -frag_duration 1000000 -f mp4 -movflags )";
    for (const char* const flags : {"empty_moov", "empty_moov+default_base_moof", "empty_moov+delay_moov"}) {
        const std::string file = encoded("m4a", command + flags + R"( "$OUT")");
        EXPECT_NEAR(secondsOf(file), shape.seconds(), 0.03) << flags << ": the last frame is filled up";
        const std::string half = file.substr(0, file.size() / 2);
        EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.6) << flags << ": a fragment is a second";
    }
}

TEST(Mp4, ThatIsCutOffIsTheSamplesThatAreThere) {
    const std::string command = R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart -f ipod "$OUT")";
    const std::string file = encoded("m4a", command);
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.025);
    EXPECT_LT(secondsOf(half), shape.seconds() * 0.7);
}

TEST(Mp4, WhoseSoundIsMissingAltogetherIsForeign) {
    const std::string command = R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart -f ipod "$OUT")";
    const std::string file = encoded("m4a", command);
    const MediaAnswer answer = answerFor(file.substr(0, file.find("mdat") - 4), "track.m4a");
    EXPECT_FALSE(answer.seconds);
    EXPECT_TRUE(answer.isForeign);
}

TEST(Mp4, WithVideoAloneIsForeign) {
    const fs::path folder = freshFolder();
    shell("ffmpeg -v error -f lavfi -i testsrc=d=1:s=64x64 v.mp4; ffmpeg -v error -f lavfi -i "
          "testsrc=d=1:s=64x64 v.mkv",
          folder);
    for (const char* const name : {"v.mp4", "v.mkv"}) {
        const MediaAnswer answer = answerFor(read(folder / name), "track.m4a");
        EXPECT_FALSE(answer.seconds) << name;
        EXPECT_TRUE(answer.isForeign) << name;
    }
}

TEST(Matroska, IsWalkedWhereItsStatementIsMissingOrFalse) {
    EXPECT_NEAR(secondsOf(encoded("mka")), shape.seconds(), 0.001);
    for (const char* const codec : {"flac", "libopus", "pcm_s16le"}) {
        const std::string command =
            std::string(R"(ffmpeg -v error -i "$IN" -f matroska -c:a )") + codec + R"( - | cat > "$OUT")";
        EXPECT_NEAR(secondsOf(encoded("mka", command)), shape.seconds(), 0.002) << codec;
    }
    const std::string file = encoded("mka");
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.1);
}

TEST(Matroska, IsAsLongAsItsSoundWhateverElseIsInIt) {
    const std::string picture = R"(ffmpeg -v error -i "$IN" -f lavfi -i testsrc=s=64x64:d=)";
    for (const std::string& command :
         {subtitled + R"(-c:a flac "$OUT")", picture + R"(20 -c:v mpeg4 -c:a pcm_s16le "$OUT")",
          picture + R"(2 -c:v mpeg4 -c:a aac "$OUT")"}) {
        const std::string file = encoded("mka", command);
        EXPECT_NEAR(secondsOf(file), shape.seconds(), 0.03) << command;
        EXPECT_NEAR(secondsOf(withoutTrackNotes(file)), shape.seconds(), 0.03) << command;
    }
}

TEST(Matroska, WithoutNotesOfItsTracksIsReadAtItsEndAlone) {
    const std::string file = withoutTrackNotes(encoded("mka", subtitled + R"(-c:a pcm_s16le "$OUT")"));
    const Bytes content(file.begin(), file.end());
    std::vector<Read> reads;
    const MediaAnswer answer = mediaDuration(counted(content, reads), "track.mka", {});
    EXPECT_NEAR(answer.seconds.value_or(-1), shape.seconds(), 0.001);
    EXPECT_LE(bytesIn(reads), std::ssize(file) / 2);
}

TEST(RealMedia, IsWalkedWhereNothingIsStated) {
    EXPECT_NEAR(secondsOf(encoded("ra")), shape.seconds(), 0.04);
    const std::string aac = encoded("ra", R"(ffmpeg -v error -i "$IN" -c:a aac -f rm "$OUT")");
    EXPECT_NEAR(secondsOf(aac), decodedSeconds(aac), 1e-6);
    const std::string command =
        R"(ffmpeg -v error -i "$IN" -ar 8000 -ac 1 -c:a real_144 -f rm - | cat > "$OUT")";
    EXPECT_NEAR(secondsOf(encoded("ra", command)), shape.seconds(), 0.05);
}

TEST(OtherContainers, AreReadUnderAnyName) {
    for (const char* const command :
         {R"(ffmpeg -v error -y -i "$IN" -c:a libmp3lame -f avi "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a mp2 -f mpegts "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a aac -f latm "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a aac -f flv "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a ac3 -f ac3 "$OUT")",
          R"(ffmpeg -v error -y -i "$IN" -c:a tta -f tta "$OUT")", R"(oggenc -Q "$IN" -o "$OUT")"}) {
        EXPECT_NEAR(secondsOf(encoded("mp3", command)), shape.seconds(), 0.06) << command;
    }
}

TEST(SoundDesigner, NeedsTheForkBesideIt) {
    const fs::path path = encodeAudio(freshFolder() / "take.sd2", shape);
    const fs::path fork = path.parent_path() / "._take.sd2";
    const auto seconds = [&path] {
        return mediaDuration(*RegularFile::open(path), path, {}).seconds.value_or(-1);
    };
    EXPECT_NEAR(seconds(), shape.seconds(), 1e-9);
    // The same fork, wrapped: magic, version, filler, one entry: the fork behind the table.
    const std::string bare = read(fork);
    write(fork, "\x00\x05\x16\x07\x00\x02\x00\x00"s + zeros(16) + be(1, 2) + be(2, 4) + be(38, 4) +
                    be(bare.size(), 4) + bare);
    EXPECT_NEAR(seconds(), shape.seconds(), 1e-9);
    for (std::size_t length = 0; length < bare.size(); length += 7) {
        write(fork, bare.substr(0, length));
        EXPECT_LE(seconds(), shape.seconds() + 1e-9) << length;
    }
    fs::remove(fork);
    EXPECT_EQ(seconds(), -1);
}

} // namespace velmora::test
