// Containers other than WAV whose length follows from their bytes: what their headers may say wrong, and how
// far they are believed.

#include "tests/measure/MediaBytes.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace velmora::test {

namespace {

using namespace std::string_literals;

std::string aiff(std::string_view chunks, std::string_view type = "AIFF") {
    return "FORM" + be(chunks.size() + 4, 4) + std::string(type) + std::string(chunks);
}

/// 8 kHz as a number of 80 bits.
const std::string extended8k = be(16'383 + 12, 2) + be(8'000ULL << 51, 8);

std::string common(std::uint32_t frames, std::string_view compression = "") {
    return iffChunk("COMM", be(1, 2) + be(frames, 4) + be(16, 2) + extended8k + std::string(compression));
}

std::string sound(std::size_t bytes) {
    return iffChunk("SSND", zeros(8) + times(bytes, "x"));
}

std::string cafChunk(std::string_view name, std::int64_t size, std::string_view content) {
    return std::string(name) + be(static_cast<std::uint64_t>(size), 8) + std::string(content);
}

std::string cafDescription(std::uint32_t packetBytes, std::uint32_t packetFrames) {
    return "caff" + be(0x10000, 4) +
           cafChunk("desc", 32,
                    be(std::bit_cast<std::uint64_t>(8'000.0), 8) + "lpcm" + zeros(4) + be(packetBytes, 4) +
                        be(packetFrames, 4) + be(1, 4) + be(16, 4));
}

std::string vocBlock(int type, std::string_view content) {
    return le(static_cast<std::uint64_t>(type), 1) + le(content.size(), 3) + std::string(content);
}

const std::string vocHeader = "Creative Voice File\x1A" + le(26, 2) + le(0x10A, 2) + le(0x1129, 2);

} // namespace

TEST(Aiff, IsWhatItStatesClampedToItsSound) {
    EXPECT_NEAR(secondsOf(aiff(common(8'000) + sound(16'000))), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(aiff(sound(16'000) + common(8'000))), 1.0, 1e-9) << "in the other order";
    EXPECT_NEAR(secondsOf(aiff(common(4'000) + sound(16'000))), 0.5, 1e-9);
    EXPECT_NEAR(secondsOf(aiff(common(0x7F000000) + "SSND" + be(0x7FFFFFFF, 4) + zeros(8 + 16'000))), 1.0,
                1e-9);
    EXPECT_NEAR(secondsOf(aiff(common(0) + "SSND" + be(0, 4) + zeros(8 + 16'000))), 1.0, 1e-9) << "a pipe's";
    EXPECT_FALSE(is<Timed>(answerFor(aiff(common(8'000)))));
    for (const std::string& empty : {sound(0), "SSND" + be(0, 4)}) {
        const std::string file = aiff(common(0) + empty + iffChunk("ID3 ", zeros(9'000)));
        EXPECT_FALSE(is<Timed>(answerFor(file))) << "a picture is no sound";
    }
}

TEST(Aiff, KnowsCompressions) {
    EXPECT_NEAR(secondsOf(aiff(common(8'000, "sowt") + sound(16'000), "AIFC")), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(aiff(common(8'000, "fl32") + sound(32'000), "AIFC")), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(aiff(common(125, "ima4") + sound(4'250), "AIFC")), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(aiff(common(8'000, "ima4") + sound(4'250), "AIFC")), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(aiff(common(50, "Qclp") + sound(1'750), "AIFC")), 1.0, 1e-9);
}

TEST(Aiff, IsWhatItStatesForACompressionThatNobodyKnows) {
    const std::string file = aiff(common(8'000, "DWVW") + sound(9'000), "AIFC");
    EXPECT_NEAR(secondsOf(file), 1.0, 1e-9);
    EXPECT_FALSE(is<Timed>(answerFor(file.substr(0, file.size() - 1)))) << "cut off";
    EXPECT_FALSE(is<Timed>(answerFor(aiff(common(8'000, "DWVW"), "AIFC")))) << "without sound";
    EXPECT_FALSE(is<Timed>(answerFor(aiff(common(50, "DWVW") + sound(1'750), "AIFC"))))
        << "a count of packets";
    EXPECT_FALSE(is<Timed>(answerFor(aiff(common(9'000'001, "DWVW") + sound(9'000), "AIFC"))))
        << "more than bytes can hold";
}

TEST(Au, IsWhatTheFileHolds) {
    const auto au = [](std::uint32_t size, std::uint32_t encoding, std::size_t there) {
        return ".snd" + be(28, 4) + be(size, 4) + be(encoding, 4) + be(8'000, 4) + be(1, 4) +
               zeros(4 + there);
    };
    EXPECT_NEAR(secondsOf(au(16'000, 3, 16'000)), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(au(8'000, 3, 16'000)), 0.5, 1e-9);
    EXPECT_NEAR(secondsOf(au(0xFFFFFFFF, 1, 8'000)), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(au(0xFFFFFFFE, 6, 32'000)), 1.0, 1e-9);
    const std::string bigEndian = au(16'000, 3, 16'000).substr(4);
    EXPECT_NEAR(secondsOf(".sd\0"s + bigEndian), 1.0, 1e-9);
    const std::string littleEndian =
        le(24, 4) + le(16'000, 4) + le(3, 4) + le(8'000, 4) + le(1, 4) + zeros(16'000);
    EXPECT_NEAR(secondsOf("dns." + littleEndian), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf("\0ds."s + littleEndian), 1.0, 1e-9);
}

TEST(Au, KnowsTheBitsOfEachEncoding) {
    const std::map<std::uint32_t, std::size_t> bits = {{1, 8},  {2, 8},  {3, 16}, {4, 24}, {5, 32}, {6, 32},
                                                       {7, 64}, {23, 4}, {24, 4}, {25, 3}, {26, 5}, {27, 8}};
    const auto au = [](std::uint32_t encoding, std::size_t bytes) {
        return ".snd" + be(24, 4) + be(bytes, 4) + be(encoding, 4) + be(8'000, 4) + be(1, 4) + zeros(bytes);
    };
    for (std::uint32_t encoding = 0; encoding < 32; ++encoding) {
        const bool isKnown = bits.contains(encoding);
        const std::size_t bytes = isKnown ? 1'000 * bits.at(encoding) : 8'000;
        EXPECT_NEAR(secondsOf(au(encoding, bytes)), isKnown ? 1.0 : -1, 1e-9) << encoding;
    }
}

TEST(Caf, IsItsBytesOrItsPacketTable) {
    const std::string pcm = cafDescription(2, 1);
    EXPECT_NEAR(secondsOf(pcm + cafChunk("data", 16'004, zeros(16'004))), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(pcm + cafChunk("data", -1, zeros(16'004))), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(pcm + cafChunk("data", 999'999, zeros(16'004))), 1.0, 1e-9);
    // 9 packets of 100 bytes and 1,000 frames; 8,000 frames play.
    const std::string table = be(9, 8) + be(8'000, 8) + be(600, 4) + be(400, 4) + times(9, be(0x64, 1));
    const std::string packed = cafDescription(0, 1'000);
    EXPECT_NEAR(secondsOf(packed + cafChunk("data", 904, zeros(904)) + cafChunk("pakt", 33, table)), 1.0,
                1e-9);
    EXPECT_NEAR(secondsOf(packed + cafChunk("pakt", 33, table) + cafChunk("data", 904, zeros(904))), 1.0,
                1e-9);
    EXPECT_NEAR(secondsOf(packed + cafChunk("pakt", 33, table) + cafChunk("data", 904, zeros(454))),
                (4'000 - 600) / 8'000.0, 1e-9)
        << "cut off";
}

TEST(Caf, HoldsNoMoreFramesThanItsPackets) {
    const auto table = [](std::uint64_t packets, std::uint64_t frames) {
        const std::string content = be(packets, 8) + be(frames, 8) + zeros(8) + times(9, be(0x64, 1));
        return cafChunk("pakt", 33, content);
    };
    const std::string pcm = cafDescription(2, 1);
    const std::string sound = cafChunk("data", 16'004, zeros(16'004));
    EXPECT_NEAR(secondsOf(pcm + table(4'000, 4'000) + sound), 0.5, 1e-9) << "what can be is believed";
    EXPECT_NEAR(secondsOf(pcm + table(900'000, 900'000) + sound), 1.0, 1e-9);
    const std::string packed = cafDescription(0, 1'000);
    const std::string data = cafChunk("data", 904, zeros(904));
    EXPECT_NEAR(secondsOf(packed + table(9, 9'001) + data), 9'001 / 8'000.0, 1e-9);
    EXPECT_NEAR(secondsOf(packed + table(9, 900'000) + data), 9'000 / 8'000.0, 1e-9);
    EXPECT_FALSE(is<Timed>(answerFor(packed + table(900, 900'000) + data, "track.caf")))
        << "nor than its table";
}

TEST(Dsd, IsItsBitsByItsRate) {
    const auto dsf = [](std::uint64_t samples, std::size_t there) {
        return "DSD " + le(28, 8) + zeros(16) + "fmt " + le(52, 8) + le(1, 4) + le(0, 4) + le(2, 4) +
               le(2, 4) + le(2'822'400, 4) + le(1, 4) + le(samples, 8) + le(4096, 4) + zeros(4) + "data" +
               le(there + 12, 8) + zeros(there);
    };
    EXPECT_NEAR(secondsOf(dsf(2'822'400, 712'704)), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(dsf(2'822'400, 352'800)), 0.5, 1e-9) << "cut off";
    EXPECT_NEAR(secondsOf(dsf(0, 705'600)), 1.0, 1e-9) << "a pipe's";
    EXPECT_TRUE(is<NothingPlays>(answerFor(dsf(0, 2 * 4'096)))) << "blocks of padding";
    const std::string properties = "PROP" + be(4 + 16 + 22, 8) + "SND " + "FS  " + be(4, 8) +
                                   be(2'822'400, 4) + "CHNL" + be(10, 8) + be(2, 2) + "SLFTSRGT";
    const std::string head = "FRM8" + be(0, 8) + "DSD " + "FVER" + be(4, 8) + be(0x01050000, 4) + properties;
    EXPECT_NEAR(secondsOf(head + "DSD " + be(705'600, 8) + zeros(705'600)), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(head + "DSD " + be(705'600, 8) + zeros(352'800)), 0.5, 1e-9);
    EXPECT_NEAR(
        secondsOf(head + "DST " + be(9'999, 8) + "FRTE" + be(6, 8) + be(75, 4) + be(75, 2) + zeros(900)), 1.0,
        1e-9);
}

TEST(Voc, AddsSoundAndSilence) {
    const std::string sound8k =
        vocBlock(1, be(256 - 125, 1) + be(0, 1) + times(8'000, "x")); // 1,000,000 / 125
    EXPECT_NEAR(secondsOf(vocHeader + sound8k + zeros(1)), 1.0, 1e-9);
    EXPECT_NEAR(secondsOf(vocHeader + sound8k), 1.0, 1e-9) << "without an end";
    EXPECT_NEAR(secondsOf(vocHeader + sound8k + vocBlock(2, times(4'000, "x")) + zeros(1)), 1.5, 1e-9);
    EXPECT_NEAR(secondsOf(vocHeader + sound8k + vocBlock(3, le(15'999, 2) + be(256 - 125, 1)) + zeros(1)),
                3.0, 1e-9);
    const std::string stereo = le(8'000, 4) + le(16, 1) + le(2, 1) + le(4, 2) + zeros(4);
    EXPECT_NEAR(secondsOf(vocHeader + vocBlock(9, stereo + times(32'000, "x")) + zeros(1)), 1.0, 1e-9);
    const std::string parameters = vocBlock(8, le(65'536 - 256'000'000 / 16'000, 2) + be(0, 1) + be(1, 1));
    EXPECT_NEAR(
        secondsOf(vocHeader + parameters + vocBlock(1, be(99, 1) + be(0, 1) + times(16'000, "x")) + zeros(1)),
        1.0, 1e-9);
}

TEST(Voc, KnowsTheBitsOfEachCodec) {
    const auto voc = [](std::uint64_t codec, std::size_t bytes) {
        const std::string head = le(9'000, 4) + le(0, 1) + le(1, 1) + le(codec, 2) + zeros(4);
        return vocHeader + vocBlock(9, head + times(bytes, "x")) + zeros(1);
    };
    for (const auto& [codec, bytes] : std::map<std::uint64_t, std::size_t>{{0, 9'000},
                                                                           {1, 4'500},
                                                                           {2, 3'000},
                                                                           {3, 2'250},
                                                                           {4, 18'000},
                                                                           {6, 9'000},
                                                                           {7, 9'000},
                                                                           {0x200, 4'500}}) {
        EXPECT_NEAR(secondsOf(voc(codec, bytes)), 1.0, 1e-9) << codec;
    }
    EXPECT_FALSE(is<Timed>(answerFor(voc(5, 9'000))));
}

TEST(Voc, PassesOverBlocksTooShortForTheirHead) {
    const std::string whole = vocBlock(1, be(256 - 125, 1) + be(0, 1) + times(8'000, "x"));
    for (const auto& [type, bytes] : std::map<int, std::size_t>{{1, 1}, {3, 2}, {8, 3}, {9, 11}}) {
        EXPECT_NEAR(secondsOf(vocHeader + vocBlock(type, zeros(bytes)) + whole + zeros(1)), 1.0, 1e-9)
            << type;
    }
}

} // namespace velmora::test
