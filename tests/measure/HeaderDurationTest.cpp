#include "measure/HeaderDuration.h"

#include "system/RegularFile.h"
#include "tests/measure/HeaderBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>
#include <string>

namespace velmora::HeaderDuration {

namespace {

using test::Bytes;
using test::fs::path;

using Seconds = std::optional<double>;

Bytes oggOfOneSecond() {
    return test::vorbisFile(test::OggPage{.granulePosition = 44'100, .packets = Bytes(100)}.bytes());
}

Bytes asfOfTwoSeconds() {
    return test::asfHeader(test::AsfFileProperties{}.bytes());
}

std::size_t openDescriptors() {
    return test::namesIn("/proc/self/fd").size();
}

} // namespace

TEST(HeaderDuration, ChoosesTheReaderByTheExtensionInAnyCase) {
    const path folder = test::freshFolder();
    for (const std::string name :
         {"a.ogg", "a.oga", "a.opus", "a.ogx", "a.spx", "A.OGG", "a.Opus", "x.wma.ogg", ".ogg"}) {
        EXPECT_EQ(seconds(test::write(folder / name, oggOfOneSecond())), 1.0) << name;
        EXPECT_EQ(seconds(test::write(folder / name, asfOfTwoSeconds())), Seconds()) << name;
    }
    for (const std::string name : {"a.wma", "a.asf", "a.wmv", "A.WMA", "x.ogg.wma"}) {
        EXPECT_EQ(seconds(test::write(folder / name, asfOfTwoSeconds())), 2.0) << name;
        EXPECT_EQ(seconds(test::write(folder / name, oggOfOneSecond())), Seconds()) << name;
    }
}

TEST(HeaderDuration, KnowsNoOtherExtension) {
    const path folder = test::freshFolder();
    for (const std::string name : {"a.opu", "a.ogv", "a.ogm", "a.oggx", "a.ogg ", "a.ogg.", "ogg", "wma",
                                   "a.mp3", "a.wm", "a.ogg.mp3"}) {
        EXPECT_EQ(seconds(test::write(folder / name, oggOfOneSecond())), Seconds()) << name;
        EXPECT_EQ(seconds(test::write(folder / name, asfOfTwoSeconds())), Seconds()) << name;
    }
}

TEST(HeaderDuration, ReadsAFileThatIsOpenAlready) {
    const path folder = test::freshFolder();
    const std::optional<RegularFile> ogg = RegularFile::open(test::write(folder / "1", oggOfOneSecond()));
    const std::optional<RegularFile> asf = RegularFile::open(test::write(folder / "2", asfOfTwoSeconds()));
    ASSERT_TRUE(ogg && asf);
    EXPECT_FALSE(timed("named.wmv", sourceOf(*ogg)));
    EXPECT_FALSE(timed("named.mp3", sourceOf(*ogg)));
    const std::optional<Timed> counted = timed("named.opus", sourceOf(*ogg));
    const std::optional<Timed> stated = timed("named.wmv", sourceOf(*asf));
    ASSERT_TRUE(counted && stated);
    EXPECT_EQ(counted->format.text(), "Ogg");
    EXPECT_EQ(
        counted->timing,
        (Timing{.seconds = 1.0, .basis = Basis::counted, .way = Way::headerReader, .sampling = {44'100, 2}}));
    EXPECT_EQ(stated->format.text(), "ASF");
    EXPECT_EQ(stated->timing, (Timing{.seconds = 2.0, .stated = 2.0, .way = Way::headerReader}));
}

TEST(HeaderDuration, ReadsByPathWhateverTheExtension) {
    const path folder = test::freshFolder();
    EXPECT_EQ(ogg(test::write(folder / "1.wma", oggOfOneSecond())), 1.0);
    EXPECT_EQ(asf(test::write(folder / "2.ogg", asfOfTwoSeconds())), 2.0);
    EXPECT_EQ(ogg(folder / "2.ogg"), Seconds());
    EXPECT_EQ(asf(folder / "1.wma"), Seconds());
}

TEST(HeaderDuration, IsAbsentForWhatIsNotARegularFile) {
    const path folder = test::freshFolder();
    test::fs::create_directory(folder / "folder.ogg");
    ASSERT_EQ(::mkfifo((folder / "fifo.ogg").c_str(), 0600), 0);
    test::fs::create_symlink("nowhere.ogg", folder / "dangling.ogg");
    for (const std::string name : {"folder.ogg", "fifo.ogg", "dangling.ogg", "missing.ogg"}) {
        EXPECT_EQ(seconds(folder / name), Seconds()) << name;
        EXPECT_EQ(ogg(folder / name), Seconds()) << name;
        EXPECT_EQ(asf(folder / name), Seconds()) << name;
    }
}

TEST(HeaderDuration, IsAbsentForAnEmptyFile) {
    const path folder = test::freshFolder();
    EXPECT_EQ(seconds(test::write(folder / "a.ogg")), Seconds());
    EXPECT_EQ(seconds(test::write(folder / "a.wma")), Seconds());
}

TEST(HeaderDuration, ClosesEveryFileItOpens) {
    const path folder = test::freshFolder();
    const path good = test::write(folder / "good.ogg", oggOfOneSecond());
    const path bad = test::write(folder / "bad.ogg", Bytes(1'000));
    const path live =
        test::write(folder / "live.wma", test::asfHeader(test::AsfFileProperties{.playDuration = 0}.bytes()));
    const std::size_t before = openDescriptors();
    EXPECT_EQ(seconds(good), 1.0);
    EXPECT_EQ(seconds(bad), Seconds());
    EXPECT_EQ(seconds(live), Seconds());
    EXPECT_EQ(openDescriptors(), before);
}

TEST(HeaderDuration, IsExactForRealOggFiles) {
    const path folder = test::freshFolder();
    const test::AudioShape shape{.frames = 6 * 44'100 + 17};
    const auto measured = [&](std::string_view name, std::string_view command) {
        return seconds(test::encodeAudio(folder / name, command, shape)).value_or(-1);
    };
    const double exact = shape.seconds();
    constexpr double sample = 1.0 / 44'100;
    EXPECT_NEAR(measured("1.ogg", R"(oggenc -Q "$IN" -o "$OUT")"), exact, 1e-9);
    EXPECT_NEAR(measured("2.ogg", R"(ffmpeg -v error -i "$IN" -c:a libvorbis "$OUT")"), exact, 64 * sample);
    EXPECT_NEAR(measured("3.oga", R"(flac -s --ogg "$IN" -o "$OUT")"), exact, 1e-9);
    EXPECT_NEAR(measured("4.oga", R"(ffmpeg -v error -i "$IN" -c:a flac "$OUT")"), exact, 1e-9);
    EXPECT_NEAR(measured("5.opus", R"(opusenc --quiet "$IN" "$OUT")"), exact, sample);
    EXPECT_NEAR(measured("6.opus", R"(ffmpeg -v error -i "$IN" -c:a libopus "$OUT")"), exact, sample);
    EXPECT_NEAR(measured("7.spx", R"(speexenc --quiet -u "$IN" "$OUT" 2>/dev/null)"), exact, sample);
}

TEST(HeaderDuration, IsWithinAFrameForRealAsfFiles) {
    const path folder = test::freshFolder();
    const test::AudioShape shape{.frames = 6 * 44'100 + 17};
    constexpr double frame = 2'048.0 / 44'100;
    for (const std::string name : {"a.wma", "a.asf", "a.wmv"}) {
        const path file =
            test::encodeAudio(folder / name, R"(ffmpeg -v error -i "$IN" -c:a wmav2 -f asf "$OUT")", shape);
        EXPECT_NEAR(seconds(file).value_or(-1), shape.seconds(), frame) << name;
    }
}

} // namespace velmora::HeaderDuration
