#include "gather/ArchiveExtraction.h"

#include "system/Paths.h"
#include "tests/gather/Found.h"
#include "tests/support/Archives.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

namespace velmora {

namespace {

using Collector::extract;
using Collector::Extracted;
using test::compress;
using test::filesBelow;
using test::freshFolder;
using test::pack;
using test::read;
using test::sound;
using test::temporaryItems;
using test::write;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

/// A folder to pack.
fs::path album() {
    fs::path folder = freshFolder();
    write(folder / "01.wav", sound);
    write(folder / "Disc 2" / "Füße.flac", "second");
    return folder;
}

/// Expects that `archive` unpacks to files with these names, and leaves nothing else.
void expectContent(const fs::path& archive, const std::vector<std::string>& names) {
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory) << archive;
    EXPECT_EQ(filesBelow(*directory), names) << archive;
    EXPECT_THAT(temporaryItems(), ElementsAre(directory->filename().native()));
    fs::remove_all(*directory);
}

/// Expects that `archive` cannot be unpacked for this reason, and leaves nothing.
void expectFailure(const fs::path& archive, Reason why) {
    EXPECT_EQ(extract(archive), Extracted{.why = why}) << archive;
    EXPECT_THAT(temporaryItems(), IsEmpty());
}

TEST(ArchiveExtraction, OpensEveryKindOfArchive) {
    for (const char* name : {"a.zip", "a.zipx", "A.ZIP", "a.tar", "a.tar.gz", "a.tgz", "a.tar.bz2", "a.tbz",
                             "a.tbz2", "a.tar.xz", "a.txz", "a.7z"}) {
        const fs::path folder = freshFolder();
        std::string lower = name;
        std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
        fs::rename(pack(folder / ("packed" + lower), album()), folder / name);
        expectContent(folder / name, {"01.wav", "Disc 2/Füße.flac"});
    }
}

TEST(ArchiveExtraction, OpensARarArchive) {
    const fs::path archive = freshFolder() / "a.rar";
    write(archive, test::rarArchive({{.name = "01.wav", .content = sound}, {.name = "02.wav"}}));
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory);
    EXPECT_EQ(read(*directory / "01.wav"), sound);
    EXPECT_EQ(filesBelow(*directory), (std::vector<std::string>{"01.wav", "02.wav"}));
}

TEST(ArchiveExtraction, OpensAZipWhoseExtensionIsAnothers) {
    const fs::path folder = freshFolder();
    fs::rename(pack(folder / "a.zip", album()), folder / "a.rar");
    expectContent(folder / "a.rar", {"01.wav", "Disc 2/Füße.flac"});
}

TEST(ArchiveExtraction, UnpacksIntoANewPrivateDirectory) {
    const fs::path archive = pack(freshFolder() / "a.tar", album());
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory);
    EXPECT_EQ(directory->parent_path(), fs::temp_directory_path());
    EXPECT_THAT(directory->filename().native(),
                testing::MatchesRegex("velmora-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
    EXPECT_EQ(fs::status(*directory).permissions(), fs::perms(0700)); // the archive holds others for "."
    EXPECT_EQ(read(*directory / "01.wav"), sound);
    EXPECT_NE(extract(archive).directory, directory);
}

TEST(ArchiveExtraction, LeavesTheArchiveAlone) {
    const fs::path archive = pack(freshFolder() / "a.zip", album());
    fs::permissions(archive, fs::perms(0440));
    const std::string content = read(archive);
    const auto time = fs::last_write_time(archive);
    EXPECT_TRUE(extract(archive).directory);
    EXPECT_EQ(read(archive), content);
    EXPECT_EQ(fs::last_write_time(archive), time);
    EXPECT_EQ(fs::status(archive).permissions(), fs::perms(0440));
    EXPECT_THAT(test::namesIn(archive.parent_path()), ElementsAre("a.zip"));
}

TEST(ArchiveExtraction, DecompressesASingleFile) {
    const fs::path folder = freshFolder();
    expectContent(compress(folder / "take.wav.gz", sound), {"take.wav"});
    expectContent(compress(folder / "take.wav.bz2", sound), {"take.wav"});
    fs::rename(folder / "take.wav.gz", folder / "TAKE.WAV.GZ");
    expectContent(folder / "TAKE.WAV.GZ", {"TAKE.WAV"});

    const std::optional<fs::path> directory = extract(folder / "take.wav.bz2").directory;
    ASSERT_TRUE(directory);
    EXPECT_EQ(read(*directory / "take.wav"), sound);
}

TEST(ArchiveExtraction, NeedsANameForASingleFile) {
    const fs::path folder = freshFolder();
    compress(folder / "take.wav.gz", sound);
    for (const auto& [name, why] :
         {std::pair(".gz", Reason::noTool), {"..gz", Reason::toolFailed}, {"...gz", Reason::toolFailed}}) {
        fs::copy_file(folder / "take.wav.gz", folder / name);
        expectFailure(folder / name, why);
    }
}

TEST(ArchiveExtraction, UnpacksAnEmptyArchiveFromAGzipOfNothing) {
    expectContent(compress(freshFolder() / "nothing.gz", ""), {});
}

TEST(ArchiveExtraction, LeavesNothingOfWhatNoToolCanOpen) {
    const fs::path folder = freshFolder();
    expectFailure(compress(folder / "x.xz", sound), Reason::noTool);
    expectFailure(write(folder / "x.zip", "PK\x03\x04 and then something else"), Reason::damaged);
    expectFailure(write(folder / "x.7z", sound), Reason::noTool);
    expectFailure(write(folder / "x.rar", "Rar!\x1A\x07"), Reason::noTool);
    expectFailure(write(folder / "x.gz", sound), Reason::noTool);
    expectFailure(write(folder / "empty.zip"), Reason::empty);
    expectFailure(folder / "missing.zip", Reason::gone);
    expectFailure(folder, Reason::notRegular);
}

TEST(ArchiveExtraction, LeavesNothingOfACutOffArchive) {
    const fs::path content = freshFolder();
    write(content / "01.wav", sound);
    for (const char* name : {"a.zip", "a.tar", "a.7z", "a.txz"}) {
        const fs::path archive = pack(freshFolder() / name, content);
        fs::resize_file(archive, fs::file_size(archive) / 4);
        expectFailure(archive, Reason::damaged);
    }
}

TEST(ArchiveExtraction, GivesUpOnEncryptedArchives) {
    const fs::path folder = freshFolder();
    const fs::path secretContent =
        write(folder / "a.rar",
              test::rarArchive({{.name = "01.wav", .content = sound}}, test::RarSecrecy::content));
    Paths archives = {
        pack(folder / "a.zip", album(), "-P password"),
        pack(folder / "a.7z", album(), "-ppassword"),
        pack(folder / "headers.7z", album(), "-ppassword -mhe=on"),
        write(folder / "names.rar", test::rarArchive({}, test::RarSecrecy::contentAndNames)),
    };
    test::shell("7z a -bso0 -bd -ppassword -mem=AES256 " + test::shellWord((folder / "aes.zip").native()) +
                    " .",
                album());
    archives.push_back(folder / "aes.zip");
    const std::string written = test::onTerminal([&] {
        for (const fs::path& archive : archives) {
            expectFailure(archive, Reason::encrypted);
        }
        expectFailure(secretContent, Reason::toolFailed); // bsdtar does not know what is wrong with it
    });
    EXPECT_EQ(written, "");
    for (const fs::path& archive : archives) {
        expectFailure(archive, Reason::encrypted);
    }
}

TEST(ArchiveExtraction, NamesDamageThatOnlyTheEndOfAnArchiveShows) {
    const fs::path folder = freshFolder();
    const fs::path content = freshFolder();
    write(content / "01.wav", std::string(100'000, 's'));
    for (const char* name : {"a.zip", "a.7z", "a.txz"}) {
        const fs::path archive = pack(folder / name, content);
        test::shell("printf XXXXXXXX | dd status=none conv=notrunc bs=1 seek=" +
                        std::to_string(fs::file_size(archive) / 4) + " of=" + name,
                    folder);
        expectFailure(archive, Reason::damaged);
    }
    const fs::path single = compress(folder / "take.wav.gz", sound);
    fs::resize_file(single, fs::file_size(single) - 4); // its checksum
    expectFailure(single, Reason::damaged);
}

TEST(ArchiveExtraction, NamesAnArchiveThatMayNotBeRead) {
    test::asOrdinaryUser([] {
        const fs::path archive = pack(freshFolder() / "a.zip", album());
        fs::permissions(archive, fs::perms::none);
        expectFailure(archive, Reason::permissionDenied);
    });
}

TEST(ArchiveExtraction, OpensOnlyRegularFiles) {
    const fs::path folder = freshFolder();
    ASSERT_EQ(::mkfifo((folder / "fifo.zip").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", folder / "device.gz");
    expectFailure(folder / "fifo.zip", Reason::notRegular);
    expectFailure(folder / "device.gz", Reason::notRegular);
}

TEST(ArchiveExtraction, ReadsTheArchiveItselfWhenNoCopyCanBeMade) {
    const fs::path folder = freshFolder();
    const std::string longStem(200, 'x');
    for (const char* extension : {".zip", ".tar", ".7z"}) {
        const fs::path archive = pack(folder / (longStem + extension), album());
        expectContent(archive, {"01.wav", "Disc 2/Füße.flac"});
    }
    expectContent(compress(folder / (longStem + ".gz"), sound), {longStem});
}

TEST(ArchiveExtraction, NeverTakesAnArchivesNameForAPattern) {
    for (const std::size_t length : {0U, 200U}) { // with a working copy, without
        const std::string stem(length, 'x');
        const fs::path folder = freshFolder();
        pack(folder / (stem + "Album F.zip"), album());
        pack(folder / (stem + "Album x.zip"), album());
        for (const char* name : {"Album [FLAC].zip", "Album *.zip", "Album ?.zip"}) {
            expectFailure(write(folder / (stem + name), "no archive at all"), Reason::noTool);
        }
        const fs::path other = freshFolder();
        write(other / "right.wav");
        expectContent(pack(folder / (stem + "Album [fx].zip"), other), {"right.wav"});
    }
}

TEST(ArchiveExtraction, TurnsNamesIntoUtf8UnderEveryLocale) {
    for (const char* locale : {"C", "POSIX", "de_DE.ISO-8859-1", "en_US.UTF-8"}) {
        ::setenv("LC_ALL", locale, 1);
        const fs::path folder = freshFolder();
        for (const char* name : {"a.zip", "a.tar", "a.7z"}) {
            expectContent(pack(folder / name, album()), {"01.wav", "Disc 2/Füße.flac"});
        }
        expectContent(write(folder / "windows.zip", test::zipArchive({{.name = "Füße.wav"}})), {"Füße.wav"});
    }
}

TEST(ArchiveExtraction, IgnoresOptionsFromTheEnvironment) {
    ::setenv("TAR_OPTIONS", "--exclude=*.wav", 1);
    ::setenv("UNZIP", "-l", 1);
    ::setenv("GZIP", "--nonsense", 1);
    const fs::path folder = freshFolder();
    expectContent(pack(folder / "a.zip", album()), {"01.wav", "Disc 2/Füße.flac"});
    ::unsetenv("TAR_OPTIONS");
    ::unsetenv("GZIP");
    pack(folder / "a.tgz", album());
    ::setenv("TAR_OPTIONS", "--exclude=*.wav", 1);
    ::setenv("GZIP", "--nonsense", 1);
    expectContent(folder / "a.tgz", {"01.wav", "Disc 2/Füße.flac"});
}

TEST(ArchiveExtraction, FailsWithoutATemporaryDirectoryToWriteTo) {
    test::asOrdinaryUser([] {
        const fs::path archive = pack(freshFolder() / "a.zip", album());
        const fs::path closed = freshFolder();
        fs::permissions(closed, fs::perms(0500));
        ::setenv("TMPDIR", closed.c_str(), 1);
        EXPECT_EQ(extract(archive), Extracted{.why = Reason::noDirectory});
        EXPECT_THAT(test::namesIn(closed), IsEmpty());
    });
}

} // namespace

} // namespace velmora
