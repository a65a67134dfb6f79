// What the archive's records state: methods, times, permissions, and the large forms.

#include "export/ZipWriter.h"
#include "export/Zipper.h"
#include "system/Paths.h"
#include "tests/export/ZipReading.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <stop_token>

namespace velmora::test {

namespace {

using testing::ElementsAre;

TEST(ZipFormat, StoresCompressedAudioAndDeflatesTheRest) {
    const fs::path folder = freshFolder();
    const std::vector<std::string> stored = {"a.mp3",  "a.flac", "a.m4a", "a.OGG",
                                             "a.opus", "a.wma",  "a.wv",  "a"};
    const std::vector<std::string> deflated = {"b.wav",  "b.WAVE", "b.bwf", "b.aif", "b.aiff",
                                               "b.aifc", "b.caf",  "b.au",  "b.snd", "b.voc",
                                               "b.w64",  "b.rf64", "b.sd2", "b.dsf", "b (2).dff"};
    Paths files;
    for (const auto& names : {stored, deflated}) {
        for (const std::string& name : names) {
            files.push_back(write(folder / name, std::string(100000, 'x')));
        }
    }
    const fs::path archive = folder / "Mix.zip";
    Zipper::zip(files, {folder}, archive, [](int, int) {});

    expectWhole(archive);
    const std::vector<ListedEntry> entries = entriesOf(archive);
    ASSERT_EQ(entries.size(), 1 + files.size());
    for (std::size_t i = 1; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].method, i <= stored.size() ? 0 : 8) << entries[i].name;
    }
}

TEST(ZipFormat, MarksEntriesAsReadableUnixFilesAndFolders) {
    const fs::path folder = freshFolder();
    const fs::path archive = folder / "Mix.zip";
    Zipper::zip({write(folder / "CD/a.mp3", "x")}, {folder}, archive, [](int, int) {});
    for (const ListedEntry& entry : entriesOf(archive)) {
        EXPECT_EQ(entry.system, 3) << entry.name;
        EXPECT_EQ(entry.mode, entry.name.ends_with("/") ? S_IFDIR | 0755U : S_IFREG | 0644U) << entry.name;
        EXPECT_EQ(entry.flags & 0x0009U, 0U) << "encrypted, or sizes only after the content: " << entry.name;
    }
    const fs::path out = freshFolder();
    shell("umask 022 && unzip -qq " + shellWord(archive.native()), out);
    EXPECT_EQ(fs::status(out / "Mix/CD/a.mp3").permissions(), fs::perms(0644));
    EXPECT_EQ(fs::status(out / "Mix/CD").permissions(), fs::perms(0755));
}

std::int64_t modificationTime(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mtim.tv_sec;
}

fs::path writeWithTime(const fs::path& path, std::string_view time) {
    write(path, "x");
    shell("touch -d " + shellWord(time) + " " + shellWord(path.native()));
    return path;
}

TEST(ZipFormat, KeepsTheTimesOfFiles) {
    const fs::path folder = freshFolder();
    const fs::path archive = folder / "Mix.zip";
    const fs::path file = writeWithTime(folder / "a.mp3", "2024-02-29 23:59:59.75");
    Zipper::zip({file}, {}, archive, [](int, int) {});
    EXPECT_EQ(entriesOf(archive).back().localTime, "2024-02-29 23:59:58");
    const fs::path out = freshFolder();
    shell("TZ=Asia/Kolkata unzip -qq " + shellWord(archive.native()), out);
    EXPECT_EQ(modificationTime(out / "Mix/a.mp3"), modificationTime(file)) << "exact, in any time zone";
}

TEST(ZipFormat, KeepsTimesThatThirtyOneBitsOfSecondsDoNotReach) {
    const fs::path folder = freshFolder();
    const fs::path archive = folder / "Mix.zip";
    const Paths files = {writeWithTime(folder / "last.mp3", "2038-01-19 03:14:07 UTC"),
                         writeWithTime(folder / "later.mp3", "2038-01-19 03:14:08 UTC"),
                         writeWithTime(folder / "much later.mp3", "2107-06-01 12:00:00")};
    Zipper::zip(files, {}, archive, [](int, int) {});
    const fs::path out = freshFolder();
    shell("bsdtar -xf " + shellWord(archive.native()), out);
    for (const fs::path& file : files) {
        EXPECT_EQ(modificationTime(out / "Mix" / file.filename()), modificationTime(file)) << file;
    }
}

TEST(ZipFormat, ClampsTimesToWhatAZipCanState) {
    struct Row {
        const char* time;
        const char* expected;
    };

    const std::vector<Row> rows = {
        {"1969-12-31 12:00:00", "1980-01-01 00:00:00"}, {"1979-12-31 23:59:59", "1980-01-01 00:00:00"},
        {"1980-01-01 00:00:02", "1980-01-01 00:00:02"}, {"2038-01-19 12:00:00", "2038-01-19 12:00:00"},
        {"2107-12-31 23:59:58", "2107-12-31 23:59:58"}, {"2108-01-01 00:00:00", "2107-12-31 23:59:58"},
        {"2400-06-01 00:00:00", "2107-12-31 23:59:58"},
    };
    const fs::path folder = freshFolder();
    const fs::path archive = folder / "Mix.zip";
    Paths files;
    files.reserve(rows.size());
    for (const Row& row : rows) {
        files.push_back(writeWithTime(folder / (std::to_string(files.size()) + ".mp3"), row.time));
    }
    Zipper::zip(files, {}, archive, [](int, int) {});
    expectWhole(archive);
    const std::vector<ListedEntry> entries = entriesOf(archive);
    ASSERT_EQ(entries.size(), 1 + rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(entries[1 + i].localTime, rows[i].expected) << rows[i].time;
    }
}

TEST(ZipFormat, KeepsContentOfAnySizeAroundItsBuffers) {
    const fs::path folder = freshFolder();
    Paths files;
    for (const std::size_t size :
         {0U, 1U, 8191U, 8192U, 8193U, 262000U, 262143U, 262144U, 262145U, 600000U}) {
        for (const char* extension : {".mp3", ".wav"}) {
            std::string content(size, '\0');
            for (std::size_t i = 0; i < size; ++i) {
                content[i] = static_cast<char>((i * i / 7 + size) & 0xFF);
            }
            files.push_back(write(folder / (std::to_string(size) + extension), content));
        }
    }
    const fs::path archive = freshFolder() / "Mix.zip";
    Zipper::zip(files, {folder}, archive, [](int, int) {});
    expectWhole(archive);
    const std::map<std::string, std::string> unpackedFiles = unpacked(archive);
    ASSERT_EQ(unpackedFiles.size(), files.size());
    for (const fs::path& file : files) {
        EXPECT_TRUE(unpackedFiles.at("Mix/" + file.filename().native()) == read(file)) << file;
    }
}

TEST(ZipFormat, HoldsMoreEntriesThanTheShortFormCounts) {
    constexpr int count = 70000;
    const fs::path folder = freshFolder();
    const Paths songs = {write(folder / "0.mp3", "even"), write(folder / "1.mp3", "odd")};
    const fs::path content = folder / "Mix";
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i) {
        files.push_back(std::to_string(i / 1000) + "/" + std::to_string(i) + ".mp3");
        fs::create_directories((content / files.back()).parent_path());
        fs::create_hard_link(songs[static_cast<std::size_t>(i % 2)], content / files.back());
    }
    const fs::path archive = folder / "Mix.zip";
    writeZip(archive, content, files);
    expectWhole(archive);
    EXPECT_EQ(namesOf(archive).size(), 1U + count / 1000 + count);
    EXPECT_EQ(shell("unzip -p " + shellWord(archive.native()) + " Mix/69/69999.mp3"), "odd");
}

long peakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(ZipFormat, HoldsMoreThanFourGibibytesInLittleMemory) {
    constexpr std::uintmax_t size = (std::uintmax_t{4} << 30) + 123;
    const fs::path folder = freshFolder();
    const fs::path content = folder / "Mix";
    fs::resize_file(write(content / "large.mp3"), size);
    write(content / "last.mp3", "after it");
    const fs::path archive = folder / "Mix.zip";
    const long before = peakKilobytes();
    writeZip(archive, content, {"large.mp3", "last.mp3"});
    EXPECT_LT(peakKilobytes() - before, 65536);

    EXPECT_GT(fs::file_size(archive), size);
    EXPECT_THAT(namesOf(archive), ElementsAre("Mix/", "Mix/large.mp3", "Mix/last.mp3"));
    const std::string word = shellWord(archive.native());
    EXPECT_EQ(shell("python3 -m zipfile -t " + word), "Done testing\n");
    EXPECT_THAT(shell("unzip -Zl " + word), testing::HasSubstr(" " + std::to_string(size) + " "));
    EXPECT_EQ(shell("unzip -p " + word + " Mix/last.mp3"), "after it");
    EXPECT_THAT(shell("bsdtar -tvf " + word), testing::HasSubstr(" " + std::to_string(size) + " "));
    EXPECT_EQ(shell("bsdtar -xOf " + word + " Mix/last.mp3"), "after it");
}

} // namespace

} // namespace velmora::test
