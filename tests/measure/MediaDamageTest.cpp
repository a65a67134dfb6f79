// Every reader against files cut off at every length and with every byte of the header changed: an answer is
// absent, or finite and positive, and what is cut off never plays longer than the whole.

#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace velmora::test {

/// A format whose cut-off files can be told, with the command that makes one; empty for the usual encoder.
struct DamageRow {
    std::string_view extension;
    std::string_view command = {};
    bool tellsWhatIsThere = true;
};

void PrintTo(const DamageRow& row, std::ostream* out) {
    *out << row.extension;
}

namespace {

using namespace std::string_literals;
constexpr AudioShape shape{.frames = 32'000, .rate = 32'000, .channels = 1};

std::string sample(const DamageRow& row) {
    const fs::path path = freshFolder() / ("track." + std::string(row.extension));
    return read(row.command.empty() ? encodeAudio(path, shape) : encodeAudio(path, row.command, shape));
}

void expectSane(const MediaAnswer& answer, std::size_t at) {
    if (is<Timed>(answer)) {
        EXPECT_TRUE(std::isfinite(secondsIn(answer))) << at;
        EXPECT_GT(secondsIn(answer), 0) << at;
    }
}

} // namespace

class MediaDamage : public testing::TestWithParam<DamageRow> {};

TEST_P(MediaDamage, CutOffNeverPlaysLonger) {
    const std::string whole = sample(GetParam());
    const double seconds = secondsOf(whole);
    ASSERT_GT(seconds, 0.9);
    const std::size_t step = std::max<std::size_t>(1, whole.size() / 2'000);
    for (std::size_t length = 0; length < whole.size(); length += length < 600 ? 1 : step) {
        const MediaAnswer answer = answerFor(std::string_view(whole).substr(0, length));
        expectSane(answer, length);
        EXPECT_LE(secondsIn(answer), seconds + 1e-6) << length << " bytes of " << whole.size();
        if (GetParam().tellsWhatIsThere && length < whole.size() / 2) {
            EXPECT_LE(secondsIn(answer), seconds * 0.8) << length << " bytes of " << whole.size();
        }
    }
}

TEST_P(MediaDamage, ChangedBytesGiveSaneAnswers) {
    const std::string whole = sample(GetParam());
    for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 400); ++at) {
        for (const char flip : {'\x01', '\x80', '\xFF'}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            expectSane(answerFor(damaged), at);
        }
    }
    // The end too: there stands the movie of MP4, the table of CAF, the last frame of FLAC.
    for (std::size_t at = whole.size() - std::min<std::size_t>(whole.size(), 900); at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xFF);
        expectSane(answerFor(damaged), at);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, MediaDamage,
    testing::Values(
        DamageRow{"wav"}, DamageRow{"rf64"}, DamageRow{"w64"}, DamageRow{"aif"}, DamageRow{"aifc"},
        DamageRow{"au"}, DamageRow{"caf"}, DamageRow{"voc"}, DamageRow{"flac"}, DamageRow{"wv", "", false},
        DamageRow{"mp3"}, DamageRow{"mp2"}, DamageRow{"aac"}, DamageRow{"amr"}, DamageRow{"mpc"},
        DamageRow{"m4a", "", false},
        DamageRow{"mp4", R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart "$OUT")", false},
        DamageRow{"mov", R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags empty_moov "$OUT")", false},
        DamageRow{"mka"}, DamageRow{"ra", "", false}),
    [](const auto& row) { return std::string(row.param.extension); });

TEST(MediaDamage, HeadersWithoutEncoderStaySane) {
    const std::string dsf = "DSD " + le(28, 8) + zeros(16) + "fmt " + le(52, 8) + le(1, 4) + le(0, 4) +
                            le(2, 4) + le(2, 4) + le(2'822'400, 4) + le(1, 4) + le(9'000, 8) + le(4096, 4) +
                            zeros(4) + "data" + le(8'204, 8) + zeros(8'192);
    const std::string dff = "FRM8" + be(0, 8) + "DSD " + "FVER" + be(4, 8) + zeros(4) + "PROP" + be(42, 8) +
                            "SND " + "FS  " + be(4, 8) + be(2'822'400, 4) + "CHNL" + be(10, 8) + be(2, 2) +
                            "SLFTSRGT" + "DSD " + be(2'000, 8) + zeros(2'000);
    const std::string ape = "MAC " + le(3990, 2) + le(0, 2) + le(52, 4) + le(24, 4) + le(8, 4) + le(0, 4) +
                            le(900, 4) + zeros(24) + le(2000, 2) + le(0, 2) + le(73'728, 4) + le(500, 4) +
                            le(2, 4) + le(16, 2) + le(2, 2) + le(44'100, 4) + le(84, 4) + le(500, 4) +
                            zeros(900);
    const std::string mpc7 =
        "MP+\x07" + le(10, 4) + le(0x10000, 4) + zeros(8) + le(1U << 31 | 200U << 20, 4) + zeros(99);
    for (const std::string& whole : {dsf, dff, ape, mpc7}) {
        const double seconds = secondsOf(whole);
        EXPECT_GT(seconds, 0);
        for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 200); ++at) {
            expectSane(answerFor(std::string_view(whole).substr(0, at)), at);
            for (int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
                std::string damaged = whole;
                damaged[at] = static_cast<char>(value);
                expectSane(answerFor(damaged), at);
            }
        }
    }
}

} // namespace velmora::test
