// FLAC whole, cut off, cut out of another file, damaged, joined.

#include "tests/measure/check/Checking.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using enum FindingKind;
using testing::ElementsAre;
using testing::IsEmpty;

/// Half a minute, so that some parts of it are far from both ends.
constexpr AudioShape halfMinute{.frames = 30 * 44'100 + 17};

std::string flac() {
    static const std::string file = made("flac", halfMinute);
    return file;
}

/// What ffmpeg copies of a FLAC file with `options`.
std::string copied(const std::string& options) {
    return made("flac",
                "flac -s -o \"$OUT.whole.flac\" \"$IN\" && ffmpeg -v error " + options +
                    " -i \"$OUT.whole.flac\" -c copy -f flac \"$OUT\"",
                halfMinute);
}

} // namespace

TEST(CheckFlac, FindsNothingInWhatEncodersMake) {
    EXPECT_THAT(findingsIn(flac(), "a.flac"), IsEmpty());
    EXPECT_THAT(findingsIn(made("flac", R"(cat "$IN" | flac -s - -c 2>/dev/null | cat > "$OUT")"), "a.flac"),
                IsEmpty());
    EXPECT_THAT(findingsIn(made("flac", R"(flac -s -8 --lax -b 16384 -o "$OUT" "$IN")"), "a.flac"),
                IsEmpty());
    EXPECT_THAT(findingsIn(made("flac", R"(ffmpeg -v error -i "$IN" "$OUT")"), "a.flac"), IsEmpty());
    EXPECT_THAT(findingsIn(flac() + "TAG" + std::string(125, ' '), "a.flac"), IsEmpty());
    EXPECT_THAT(
        findingsIn("ID3\x04" + std::string(5, '\0') + "\x64" + std::string(100, '\0') + flac(), "a.flac"),
        IsEmpty());
}

TEST(CheckFlac, FindsWhatIsCutOff) {
    for (const double part : {0.001, 0.1, 0.5, 0.9}) {
        const Finding found = findingOf(truncated, cut(flac(), part), "a.flac");
        EXPECT_NEAR(found.stated.value_or(0), halfMinute.seconds(), 1e-6);
        EXPECT_LT(found.found.value_or(99), halfMinute.seconds());
        EXPECT_THAT(kindsIn(cut(flac(), part), "a.flac"), ElementsAre(truncated)) << part;
    }
    EXPECT_THAT(kindsIn(flac().substr(0, flac().size() - 1), "a.flac"), ElementsAre(truncated)) << "one byte";
}

TEST(CheckFlac, FindsDamageWhereverItIs) {
    EXPECT_THAT(kindsIn(withBitTurned(flac()), "a.flac"), ElementsAre(damaged));
    for (const std::size_t zeros : {1U, 512U, 4'096U, 65'536U}) {
        EXPECT_THAT(kindsIn(withZeros(flac(), zeros), "a.flac"), ElementsAre(damaged)) << zeros;
    }
    const Finding found = findingOf(damaged, withZeros(flac(), 65'536), "a.flac");
    EXPECT_LT(found.found.value_or(99), halfMinute.seconds());
    EXPECT_GT(found.found.value_or(0), halfMinute.seconds() / 2) << "the rest is whole";
    std::string without = flac();
    without.erase(without.size() / 2, 30'000);
    EXPECT_THAT(kindsIn(without, "a.flac"), ElementsAre(damaged));
    without = flac();
    without.insert(without.size() / 2, noise(100'000));
    EXPECT_THAT(kindsIn(without, "a.flac"), ElementsAre(damaged));
}

TEST(CheckFlac, FindsEveryBitTurned) {
    const std::string file = made("flac", R"(flac -s --no-padding -o "$OUT" "$IN")", oneSecond);
    for (std::size_t at = file.size() / 8; at < file.size(); at += 97) {
        std::string bad = file;
        bad[at] = static_cast<char>(bad[at] ^ 1);
        EXPECT_FALSE(findingsIn(bad, "a.flac").empty()) << at;
    }
}

TEST(CheckFlac, FindsClocksThatDoNotStartAtZero) {
    const std::string part = copied("-ss 10");
    EXPECT_NEAR(findingOf(offset, part, "a.flac").found.value_or(0), 10, 0.2);
    EXPECT_EQ(findingOf(offset, part, "a.flac").stated, std::nullopt);
    const Finding found = findingOf(truncated, part, "a.flac");
    EXPECT_NEAR(found.stated.value_or(0) - found.found.value_or(0), 10, 0.2);
}

TEST(CheckFlac, FindsWhatWasJoined) {
    EXPECT_THAT(kindsIn(flac() + flac(), "a.flac"), ElementsAre(longer, damaged));
    const Finding found = findingOf(longer, flac() + flac(), "a.flac");
    EXPECT_NEAR(found.stated.value_or(0), halfMinute.seconds(), 1e-6);
    EXPECT_NEAR(found.found.value_or(0), 2 * halfMinute.seconds(), 1e-6);
}

TEST(CheckFlac, FindsWhatTrails) {
    EXPECT_THAT(kindsIn(flac() + noise(70'000), "a.flac"), ElementsAre(trailing));
    EXPECT_THAT(kindsIn(flac() + std::string(100'000, '\0'), "a.flac"), ElementsAre(trailing));
    EXPECT_THAT(findingsIn(flac() + noise(10'000), "a.flac"), IsEmpty());
}

} // namespace velmora::test
