// Ogg whole, cut off, damaged, chained, cut out of another file.

#include "tests/measure/MediaBytes.h"
#include "tests/measure/check/Checking.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using enum FindingKind;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr AudioShape twentySeconds{.frames = 20 * 48'000, .rate = 48'000};

std::string vorbis() {
    static const std::string file = made("ogg", twentySeconds);
    return file;
}

std::string opus() {
    static const std::string file = made("opus", twentySeconds);
    return file;
}

/// Where the pages of `file` begin.
std::vector<std::size_t> pagesOf(const std::string& file) {
    std::vector<std::size_t> pages;
    for (std::size_t at = file.find("OggS"); at != std::string::npos; at = file.find("OggS", at + 1)) {
        pages.push_back(at);
    }
    return pages;
}

/// `file` without the pages from the number `first` to `last`, the last one not among them.
std::string withoutPages(std::string file, std::size_t first, std::size_t last) {
    const std::vector<std::size_t> pages = pagesOf(file);
    return file.erase(pages.at(first), pages.at(last) - pages.at(first));
}

} // namespace

TEST(CheckOgg, FindsNothingInWhatEncodersMake) {
    EXPECT_THAT(findingsIn(vorbis(), "a.ogg"), IsEmpty());
    EXPECT_THAT(findingsIn(opus(), "a.opus"), IsEmpty());
    EXPECT_THAT(findingsIn(made("opus", R"(opusenc --quiet --framesize 60 "$IN" "$OUT")"), "a.opus"),
                IsEmpty());
    EXPECT_THAT(findingsIn(made("spx"), "a.spx"), IsEmpty());
    EXPECT_THAT(findingsIn(made("oga", R"(flac -s --ogg -o "$OUT" "$IN")"), "a.oga"), IsEmpty());
    EXPECT_THAT(findingsIn(made("ogg", R"(ffmpeg -v error -i "$IN" -c:a libvorbis "$OUT")"), "a.ogg"),
                IsEmpty());
    EXPECT_THAT(findingsIn(made("ogg", R"(ffmpeg -v error -i "$IN" -c:a libopus "$OUT")"), "a.ogg"),
                IsEmpty());
    EXPECT_THAT(findingsIn(vorbis() + "TAG" + zeros(125), "a.ogg"), IsEmpty());
}

TEST(CheckOgg, FindsWhatIsCutOff) {
    for (const double part : {0.02, 0.3, 0.8}) {
        EXPECT_THAT(kindsIn(cut(vorbis(), part), "a.ogg"), ElementsAre(truncated)) << part;
        EXPECT_THAT(kindsIn(cut(opus(), part), "a.ogg"), ElementsAre(truncated)) << part;
    }
    const std::size_t page = pagesOf(opus()).back();
    const Finding found = findingOf(truncated, opus().substr(0, page), "a.opus");
    EXPECT_EQ(found.stated, std::nullopt) << "between two pages";
    EXPECT_NEAR(found.found.value_or(0), 20, 1.5);
    const std::string flac = made("oga", R"(flac -s --ogg -o "$OUT" "$IN")");
    EXPECT_NEAR(findingOf(truncated, cut(flac, 0.5), "a.oga").stated.value_or(0), AudioShape().seconds(),
                1e-6);
}

TEST(CheckOgg, FindsDamageWhereverItIs) {
    EXPECT_THAT(kindsIn(withBitTurned(vorbis()), "a.ogg"), ElementsAre(damaged));
    for (const std::size_t zeros : {64U, 4'096U, 30'000U}) {
        EXPECT_THAT(kindsIn(withZeros(vorbis(), zeros), "a.ogg"), ElementsAre(damaged)) << zeros;
        EXPECT_THAT(kindsIn(withZeros(opus(), zeros), "a.opus"), ElementsAre(damaged)) << zeros;
    }
    EXPECT_THAT(kindsIn(withoutPages(opus(), 8, 11), "a.opus"), ElementsAre(damaged));
    const Finding found = findingOf(damaged, withoutPages(opus(), 8, 11), "a.opus");
    EXPECT_NEAR(found.found.value_or(0), 17, 0.5) << "a page of Opus holds a second";
}

TEST(CheckOgg, FindsClocksThatDoNotStartAtZero) {
    const std::string late = withoutPages(opus(), 2, 8);
    EXPECT_THAT(kindsIn(late, "a.opus"), ElementsAre(offset, damaged)) << "pages are missing, too";
    EXPECT_NEAR(findingOf(offset, late, "a.opus").found.value_or(0), 6, 0.5);
    EXPECT_THAT(kindsIn(withoutPages(vorbis(), 2, 8), "a.ogg"), Contains(offset));
}

TEST(CheckOgg, FindsThatAChainPlaysLongerThanItsLastLink) {
    const Finding found = findingOf(longer, opus() + vorbis(), "a.ogg");
    EXPECT_NEAR(found.stated.value_or(0), 20, 0.1);
    EXPECT_NEAR(found.found.value_or(0), 40, 0.1);
    EXPECT_THAT(kindsIn(vorbis() + vorbis(), "a.ogg"), ElementsAre(longer));
}

TEST(CheckOgg, FindsWhatTrails) {
    EXPECT_THAT(kindsIn(vorbis() + noise(70'000), "a.ogg"), ElementsAre(trailing));
    EXPECT_THAT(findingsIn(vorbis() + noise(60'000), "a.ogg"), IsEmpty());
}

} // namespace velmora::test
