#include "export/EntryNames.h"

#include "export/Zipper.h"
#include "system/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace velmora {

namespace {

using testing::ElementsAre;

std::string repeated(std::string_view text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

TEST(RelativePath, IsRelativeToTheFirstMatchingRoot) {
    struct Row {
        const char* name;
        const char* file;
        Paths roots;
        const char* expected;
    };

    const std::vector<Row> rows = {
        {"below the root", "/A/Album/CD1/01.wav", {"/A/Album"}, "CD1/01.wav"},
        {"root with a slash", "/A/Album/CD1/01.wav", {"/A/Album/"}, "CD1/01.wav"},
        {"the file system's root", "/A/01.wav", {"/"}, "A/01.wav"},
        {"a dropped file", "/A/01.wav", {"/A/01.wav"}, "01.wav"},
        {"no root", "/A/B/01.wav", {}, "01.wav"},
        {"no matching root", "/A/B/01.wav", {"/C", "/A/C"}, "01.wav"},
        {"a mere prefix", "/A/Album/01.wav", {"/A/Al"}, "01.wav"},
        {"outer root first", "/A/B/01.wav", {"/A", "/A/B"}, "B/01.wav"},
        {"inner root first", "/A/B/01.wav", {"/A/B", "/A"}, "01.wav"},
        {"first of equal roots", "/A/B/01.wav", {"/A/B", "/A", "/A/B"}, "01.wav"},
        {"extraction directory", "/t/velmora-1/Disc/01.wav", {"/m/set.zip", "/t/velmora-1"}, "Disc/01.wav"},
        {"dots in the file", "/A/./C/../Album/01.wav", {"/A/Album"}, "01.wav"},
        {"dots in the root", "/A/Album/01.wav", {"/B/../A"}, "Album/01.wav"},
        {"double slashes", "/A//Album///01.wav", {"//A/"}, "Album/01.wav"},
        {"case matters", "/a/x/01.wav", {"/A"}, "01.wav"},
        {"not UTF-8", "/A\xFF/\xE9t\xE9.wav", {"/A\xFF"}, "\xE9t\xE9.wav"},
        {"line feeds", "/A\n/x\n/1\n.wav", {"/A\n"}, "x\n/1\n.wav"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Zipper::relativePath(row.file, row.roots), row.expected) << row.name;
    }
}

TEST(RelativePath, TakesARelativeFileFromTheWorkingDirectory) {
    EXPECT_EQ(Zipper::relativePath("x/01.wav", {std::filesystem::current_path()}), "x/01.wav");
}

TEST(EntryNames, NumberRepeatedNamesWhateverTheirCase) {
    EXPECT_THAT(entryNames({"/A/01.wav", "/B/01.wav", "/C/01.WAV"}, {"/A", "/B", "/C"}),
                ElementsAre("01.wav", "01 (2).wav", "01 (3).WAV"));
    EXPECT_THAT(entryNames({"/A/a.wav", "/B/a.wav"}, {"/A/a.wav", "/B/a.wav"}),
                ElementsAre("a.wav", "a (2).wav"));
    EXPECT_THAT(entryNames({"/A/\xC3\x84.wav", "/B/\xC3\xA4.wav"}, {}),
                ElementsAre("\xC3\x84.wav", "\xC3\xA4 (2).wav"));
}

TEST(EntryNames, KeepTheFolderOfARepeatedName) {
    EXPECT_THAT(entryNames({"/A/CD 1.5/01.wav", "/B/cd 1.5/01.wav"}, {"/A", "/B"}),
                ElementsAre("CD 1.5/01.wav", "cd 1.5/01 (2).wav"));
}

TEST(EntryNames, KeepTheDotOfARepeatedNameWithoutExtension) {
    EXPECT_THAT(entryNames({"/A/notes", "/B/notes", "/C/NOTES"}, {}),
                ElementsAre("notes", "notes (2).", "NOTES (3)."));
    EXPECT_THAT(entryNames({"/A/Disc.1/README", "/B/Disc.1/README"}, {"/A", "/B"}),
                ElementsAre("Disc.1/README", "Disc.1/README (2)."));
    EXPECT_THAT(entryNames({"/A/.mp3", "/B/.mp3"}, {}), ElementsAre(".mp3", " (2).mp3"));
    EXPECT_THAT(entryNames({"/A/end.", "/B/end."}, {}), ElementsAre("end.", "end (2)."));
}

TEST(EntryNames, NumberPastNamesThatAreTaken) {
    EXPECT_THAT(entryNames({"/A/a.wav", "/A/a (2).wav", "/B/a.wav", "/C/a.wav"}, {}),
                ElementsAre("a.wav", "a (2).wav", "a (3).wav", "a (4).wav"));
    EXPECT_THAT(entryNames({"/A/a.wav", "/B/a.wav", "/A/a (2).wav"}, {}),
                ElementsAre("a.wav", "a (2).wav", "a (2) (2).wav"));
}

TEST(EntryNames, LeaveDifferentNamesAsTheyAre) {
    EXPECT_THAT(entryNames({"/A/\xC3\xA9.wav", "/B/e\xCC\x81.wav", "/C/\xE9.wav", "/D/\xE8.wav"}, {}),
                ElementsAre("\xC3\xA9.wav", "e\xCC\x81.wav", "\xE9.wav", "\xE8.wav"))
        << "composed, decomposed, and two that are not UTF-8";
}

TEST(EntryNames, NumberAFileWhereAnotherNeedsAFolder) {
    EXPECT_THAT(entryNames({"/A/live.wav", "/B/live.wav/1.mp3"}, {"/A", "/B"}),
                ElementsAre("live (2).wav", "live.wav/1.mp3"));
    EXPECT_THAT(entryNames({"/B/x/live.wav/y/1.mp3", "/A/x/Live.wav"}, {"/A", "/B"}),
                ElementsAre("x/live.wav/y/1.mp3", "x/Live (2).wav"));
}

TEST(EntryNames, ShortenARepeatedNameToWhatFileSystemsAllow) {
    const std::string longest = repeated("a", 251) + ".wav";
    EXPECT_THAT(entryNames({"/A/" + longest, "/B/" + longest, "/C/" + longest}, {}),
                ElementsAre(longest, repeated("a", 247) + " (2).wav", repeated("a", 247) + " (3).wav"));
    const std::string accents = repeated("\xC3\xA9", 125) + ".wav";
    EXPECT_THAT(entryNames({"/A/x/" + accents, "/B/x/" + accents}, {"/A", "/B"}),
                ElementsAre("x/" + accents, "x/" + repeated("\xC3\xA9", 123) + " (2).wav"));
    const std::string bytes = repeated("\x80", 251) + ".wav";
    EXPECT_THAT(entryNames({"/A/" + bytes, "/B/" + bytes}, {}),
                ElementsAre(bytes, repeated("\x80", 244) + " (2).wav"));
}

TEST(EntryNames, GiveShortenedNamesThatFallTogetherDifferentNumbers) {
    const std::string first = repeated("a", 250) + "1.wav";
    const std::string second = repeated("a", 250) + "2.wav";
    EXPECT_THAT(entryNames({"/A/" + first, "/A/" + second, "/B/" + first, "/B/" + second}, {}),
                ElementsAre(first, second, repeated("a", 247) + " (2).wav", repeated("a", 247) + " (3).wav"));
}

TEST(EntryNames, NumberTensOfThousandsOfEqualNames) {
    constexpr int count = 50000;
    Paths files;
    Paths roots;
    for (int i = 0; i < count; ++i) {
        roots.emplace_back("/music/" + std::to_string(i));
        files.push_back(roots.back() / "01.wav");
    }
    const std::vector<std::string> names = entryNames(files, roots);
    EXPECT_EQ(names.front(), "01.wav");
    EXPECT_EQ(names.back(), "01 (50000).wav");
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), files.size());
}

} // namespace

} // namespace velmora
