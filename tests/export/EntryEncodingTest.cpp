#include "export/Zipper.h"
#include "system/Paths.h"
#include "tests/export/ZipReading.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {

namespace {

struct NameRow {
    const char* name;
    std::string file;   ///< as it is on disk
    std::string packed; ///< as it is in the archive
    bool isMarkedUtf8;
};

std::string accents(int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += "\xC3\xA9";
    }
    return result;
}

std::vector<NameRow> rows() {
    const auto kept = [](const char* name, const std::string& file, bool isMarkedUtf8) {
        return NameRow{name, file, file, isMarkedUtf8};
    };
    return {
        kept("plain", "song.mp3", false),
        kept("composed", "caf\xC3\xA9.mp3", true),
        kept("decomposed", "cafe\xCC\x81.mp3", true),
        kept("beyond the basic plane", "\xF0\x9F\x8E\xB5.mp3", true),
        kept("Latin-1", "caf\xE9.mp3", false),
        kept("Latin-1 and UTF-8", "\xC9t\xE9/caf\xC3\xA9.mp3", false),
        kept("lone bytes", "\x80\xBF\xFE.mp3", false),
        kept("cut off", "a.mp3\xC3", false),
        {"overlong", "\xC0\xAF.mp3", "%C0%AF.mp3", false},
        {"surrogate", "\xED\xA0\x80.mp3", "%ED%A0%80.mp3", false},
        {"beyond Unicode", "\xC3\xA9\xF5\x80\x80\x80.mp3", "\xC3\xA9%F5%80%80%80.mp3", true},
        {"surrogate and Latin-1", "\xE9/\xED\xA0\x80.mp3", "\xE9/%ED%A0%80.mp3", false},
        kept("line feed", "a\nb.mp3", false),
        kept("line feed and accent", "\xC3\xA9\nb.mp3", true),
        kept("control characters", "a\x01\x1B[0m.mp3", false),
        kept("control character and accent", "\xC3\xA9\x01.mp3", false),
        kept("delete", "a\x7F.mp3", false),
        kept("backslash", "a\\b.mp3", false),
        kept("leading dash", "-rf.mp3", false),
        kept("pattern", "[a]*?.mp3", false),
        kept("quotes", "'\"`$.mp3", false),
        kept("blanks", "  a  .mp3 ", false),
        kept("drive", "C:a.mp3", false),
        kept("dots", "...mp3", false),
        kept("longest", std::string(251, 'n') + ".mp3", false),
        kept("longest in UTF-8", "x" + accents(125) + ".mp3", true),
    };
}

class EntryEncodingTest : public testing::Test {
protected:
    EntryEncodingTest() {
        const fs::path music = freshFolder();
        Paths files;
        for (const NameRow& row : rows()) {
            files.push_back(write(music / row.file, row.name));
        }
        Zipper::zip(files, {music}, archive, [](int, int) {});
    }

    std::string quoted() const { return shellWord(archive.native()); }

    const fs::path archive = freshFolder() / "Mix.zip";
};

TEST_F(EntryEncodingTest, AreKeptByteForByteOrEscaped) {
    std::map<std::string, ListedEntry> entries;
    for (const ListedEntry& entry : entriesOf(archive)) {
        entries[entry.name] = entry;
    }
    for (const NameRow& row : rows()) {
        ASSERT_TRUE(entries.contains("Mix/" + row.packed)) << row.name;
        EXPECT_EQ(entries["Mix/" + row.packed].isMarkedUtf8, row.isMarkedUtf8) << row.name;
    }
}

TEST_F(EntryEncodingTest, ComeBackFromUnzip) {
    const fs::path folder = freshFolder();
    shell("LC_ALL=C.UTF-8 unzip -qq -^ " + quoted(), folder);
    const std::map<std::string, std::string> files = filesBelow(folder);
    for (const NameRow& row : rows()) {
        ASSERT_TRUE(files.contains("Mix/" + row.packed)) << row.name;
        EXPECT_EQ(files.at("Mix/" + row.packed), row.name);
    }
    EXPECT_EQ(files.size(), rows().size());
}

TEST_F(EntryEncodingTest, ComeBackFromBsdtarWhichComposesThem) {
    const fs::path folder = freshFolder();
    shell("LC_ALL=C.UTF-8 bsdtar -xf " + quoted() + "", folder);
    const std::map<std::string, std::string> files = filesBelow(folder);
    for (const NameRow& row : rows()) {
        const bool isDecomposed = row.name == std::string_view("decomposed");
        EXPECT_TRUE(files.contains("Mix/" + (isDecomposed ? "caf\xC3\xA9.mp3" : row.packed))) << row.name;
    }
    EXPECT_EQ(files.size(), rows().size() - 1);
}

} // namespace

} // namespace velmora::test
