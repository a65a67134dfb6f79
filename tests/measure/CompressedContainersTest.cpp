// Formats that state their length, count it, or number their frames: real files whole and cut off, and
// headers built from bytes where there is no encoder.

#include "tests/measure/MediaBytes.h"
#include "tests/measure/TwelveSeconds.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

namespace {

using namespace std::string_literals;

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

/// Version 3.97, with what `flags` announce before the seek table.
std::string oldApeFile(int flags, std::size_t frames, std::uint32_t lastBlocks) {
    const std::string kept = (flags & 0x20) != 0 ? "" : times(44, "w");
    const std::string before =
        ((flags & 0x04) != 0 ? le(32'000, 4) : "") + ((flags & 0x10) != 0 ? le(frames, 4) : "") + kept;
    std::string table;
    for (std::size_t i = 0; i < frames; ++i) {
        table += le(32 + before.size() + frames * 4 + i * 1'000, 4);
    }
    return "MAC " + le(3'970, 2) + le(2'000, 2) + le(static_cast<std::uint64_t>(flags), 2) + le(2, 2) +
           le(44'100, 4) + le(44, 4) + zeros(4) + le(frames, 4) + le(lastBlocks, 4) + before + table +
           times(frames * 1'000, "x");
}

/// A book of two chapters of `bytes` each, in `codec`, with a picture as its first block.
std::string audibleFile(const std::string& codec, std::uint32_t bytes) {
    const auto pair = [](const std::string& key, const std::string& value) {
        return zeros(1) + be(key.size(), 4) + be(value.size(), 4) + key + value;
    };
    const std::string words =
        be(3, 4) + pair("title", times(300, "book ")) + pair("codec", codec) + pair("a", "b");
    const std::string sound =
        be(bytes, 4) + be(0, 4) + times(bytes, "x") + be(bytes, 4) + be(bytes, 4) + times(bytes, "x");
    constexpr std::size_t wordsAt = 16 + 3 * 12 + 24;
    const auto block = [](std::size_t index, std::size_t at, std::size_t size) {
        return be(index, 4) + be(at, 4) + be(size, 4);
    };
    const std::string content = "\x57\x90\x75\x36"s + be(3, 4) + zeros(4) + block(0, wordsAt, 0x7FFF'FFFF) +
                                block(1, wordsAt, words.size()) +
                                block(2, wordsAt + words.size(), sound.size()) + zeros(24) + words + sound;
    return be(content.size() + 4, 4) + content;
}

} // namespace

TEST(Audible, IsTheBytesOfItsChapters) {
    for (const auto& [codec, bytesInSecond] :
         {std::pair("mp332", 4'000.0), {"acelp16", 2'000.0}, {"acelp85", 1'062.5}}) {
        const std::string file = audibleFile(codec, 100'000);
        EXPECT_NEAR(secondsOf(file), 200'000 / bytesInSecond, 1e-9) << codec;
        EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 60'000)), 140'000 / bytesInSecond, 1e-9)
            << codec << ", cut off";
        EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 100'008)), 100'000 / bytesInSecond, 1e-9)
            << codec << ", of one chapter";
        EXPECT_TRUE(is<NothingPlays>(answerFor(file.substr(0, file.size() - 200'016), "book.aa")))
            << codec << ", of none";
    }
}

TEST(WavPack, IsItsSamplesWhateverItsHeaderSays) {
    const std::string file = encoded("wv");
    EXPECT_NEAR(secondsOf(file), twelveSeconds.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(encoded("wv", R"(wavpack -q -b4 "$IN" -o "$OUT")")), twelveSeconds.seconds(), 1e-9)
        << "hybrid";
    std::string unstated = file;
    unstated.replace(12, 4, times(4, "\xFF"));
    EXPECT_NEAR(secondsOf(unstated), twelveSeconds.seconds(), 1e-9);
    EXPECT_NEAR(secondsOf(encoded("wv", R"(ffmpeg -v error -i "$IN" -f wv - | cat > "$OUT")")),
                twelveSeconds.seconds(), 1e-9);
    const std::string half = file.substr(0, file.size() / 2);
    EXPECT_NEAR(secondsOf(half), decodedSeconds(half), 0.6) << "a block is half a second";
    EXPECT_LT(secondsOf(half), twelveSeconds.seconds() * 0.7);
}

TEST(WavPack, ThatWasCutOutOfAnotherIsWhatItHolds) {
    const std::string file = encoded("wv", R"(wavpack -q --blocksize=22050 "$IN" -o "$OUT")");
    std::size_t second = file.find("wvpk", 4);
    const std::string rest = file.substr(second);
    EXPECT_NEAR(secondsOf(rest), twelveSeconds.seconds() - 0.5, 1e-9);
}

TEST(Ape, IsItsFramesByItsRate) {
    EXPECT_NEAR(secondsOf(apeFile(20, 500)), (19 * 73'728 + 500) / 44'100.0, 1e-9);
    const std::string whole = apeFile(20, 500);
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() - 9'500)), 10 * 73'728 / 44'100.0, 1e-9) << "cut off";
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() - 10'000)), 10 * 73'728 / 44'100.0, 1e-9)
        << "cut off between two frames";
    EXPECT_NEAR(secondsOf(whole.substr(0, whole.size() - 10'001)), 9 * 73'728 / 44'100.0, 1e-9);
}

TEST(Ape, ThatSaysNotWhereItEndsIsTheFramesThatBeginInIt) {
    for (const int flags : {0x00, 0x04, 0x10, 0x14, 0x20, 0x34}) {
        const std::string file = oldApeFile(flags, 20, 500);
        EXPECT_NEAR(secondsOf(file), (19 * 294'912 + 500) / 44'100.0, 1e-9) << flags;
        EXPECT_NEAR(secondsOf(file.substr(0, file.size() - 9'500)), 10 * 294'912 / 44'100.0, 1e-9)
            << flags << ", cut off";
    }
}

TEST(Ape, HasNoMoreFramesThanItsFileHolds) {
    constexpr std::uint32_t many = 6'000'000; // 472 days
    std::string stub = oldApeFile(0x30, 20, 500);
    stub.replace(24, 4, le(many, 4));
    EXPECT_TRUE(is<NothingPlays>(answerFor(stub.substr(0, 13'955), "old.ape")));
    std::string file = apeFile(20, 500);
    file.replace(52 + 12, 4, le(many, 4));
    EXPECT_LE(secondsOf(file), static_cast<double>(file.size()) / 8 * 73'728 / 44'100.0);
    file.replace(24, 4, le(21'000, 4)); // of the frames, more than there is
    EXPECT_TRUE(is<NothingPlays>(answerFor(file, "track.ape")));
}

TEST(WavPack, NumbersNoMoreThanItsFileHolds) {
    const std::string head = "wvpk" + le(24 + 100, 4) + le(0x410, 2);
    const std::string rest =
        le(0xFFFF'FFFF, 4) + le(0xFFFF'0000, 4) + le(22'050, 4) + le(9U << 23, 4) + zeros(104);
    const std::string first =
        head + zeros(2) + le(0xFFFF'FFFF, 4) + zeros(4) + le(22'050, 4) + le(9U << 23, 4) + zeros(104);
    EXPECT_NEAR(secondsOf(first), 0.5, 1e-9);
    EXPECT_FALSE(is<Timed>(answerFor(first + head + "\xFF\xFF" + rest, "track.wv"))) << "289 days";
}

TEST(Caf, IsAsLongAsItsLastPacketSays) {
    for (const std::string codec : {"flac", "alac"}) {
        for (const std::int64_t frames : {std::int64_t{1}, std::int64_t{8 * 4096}, twelveSeconds.frames}) {
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
        EXPECT_GT(secondsOf(damaged), twelveSeconds.seconds() + 0.01) << codec << ": counted as full";
        EXPECT_LT(secondsOf(damaged), twelveSeconds.seconds() + 0.2) << codec;
    }
}

TEST(SoundDesigner, NeedsTheForkBesideIt) {
    const fs::path path = encodeAudio(freshFolder() / "take.sd2", twelveSeconds);
    const fs::path fork = path.parent_path() / "._take.sd2";
    const auto seconds = [&path] { return secondsIn(answerForFile(path)); };
    EXPECT_NEAR(seconds(), twelveSeconds.seconds(), 1e-9);
    // The same fork, wrapped: magic, version, filler, one entry: the fork after the table.
    const std::string bare = read(fork);
    write(fork, "\x00\x05\x16\x07\x00\x02\x00\x00"s + zeros(16) + be(1, 2) + be(2, 4) + be(38, 4) +
                    be(bare.size(), 4) + bare);
    EXPECT_NEAR(seconds(), twelveSeconds.seconds(), 1e-9);
    for (std::size_t length = 0; length < bare.size(); length += 7) {
        write(fork, bare.substr(0, length));
        EXPECT_LE(seconds(), twelveSeconds.seconds() + 1e-9) << length;
    }
    fs::remove(fork);
    EXPECT_EQ(seconds(), -1);
}

} // namespace velmora::test
