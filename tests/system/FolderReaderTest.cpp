#include "system/FolderReader.h"

#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <dirent.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <map>

namespace {

/// Whether names come without what they are, as from file systems that do not keep that beside the name.
bool kindsAreUnknown = false;

int looks = 0; ///< how often an entry itself was looked at

} // namespace

/// These two stand between the tests and the C library.
extern "C" ssize_t getdents64(int folder, void* buffer, size_t size) noexcept { // NOLINT: the library's name
    static const auto real = reinterpret_cast<decltype(&getdents64)>(::dlsym(RTLD_NEXT, "getdents64"));
    const ssize_t filled = real(folder, buffer, size);
    for (ssize_t at = 0; kindsAreUnknown && at < filled;) {
        auto* entry = reinterpret_cast<dirent64*>(static_cast<char*>(buffer) + at);
        entry->d_type = DT_UNKNOWN;
        at += entry->d_reclen;
    }
    return filled;
}

extern "C" int statx(int parent, const char* name, int flags, unsigned wanted,
                     struct statx* status) noexcept {
    static const auto real = reinterpret_cast<decltype(&::statx)>(::dlsym(RTLD_NEXT, "statx"));
    ++looks;
    return real(parent, name, flags, wanted, status);
}

namespace velmora {

namespace {

using test::freshFolder;
using test::write;
using testing::Pair;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

std::map<std::string, EntryKind> entriesOf(FolderReader reader) {
    std::map<std::string, EntryKind> entries;
    while (const auto entry = reader.next()) {
        entries.emplace(entry->name, entry->kind);
    }
    return entries;
}

TEST(FolderReader, TellsFoldersAndLinksFromTheRest) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "folder");
    write(folder / "file");
    fs::create_symlink("folder", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair("folder", EntryKind::folder), Pair("file", EntryKind::other),
                                     Pair("link", EntryKind::link), Pair("fifo", EntryKind::other)));
    EXPECT_EQ(looks, 0);
}

TEST(FolderReader, LooksAtAnEntryWhoseNameDoesNotTellWhatItIs) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "folder");
    write(folder / "file");
    fs::create_symlink("folder", folder / "link");
    kindsAreUnknown = true;
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair("folder", EntryKind::folder), Pair("file", EntryKind::other),
                                     Pair("link", EntryKind::link)));
    EXPECT_EQ(looks, 3);
}

TEST(FolderReader, GivesEveryNameOfAFolderThatFillsManyBuffers) {
    const fs::path folder = freshFolder();
    constexpr int files = 1000;
    for (int i = 0; i < files; ++i) {
        write(folder / (std::to_string(i) + std::string(240, 'x')));
    }
    EXPECT_EQ(entriesOf(FolderReader(folder)).size(), static_cast<std::size_t>(files));
}

TEST(FolderReader, FindsNothingInAFolderThatIsGone) {
    const fs::path folder = freshFolder() / "gone";
    fs::create_directory(folder);
    FolderReader reader(folder);
    fs::remove(folder);
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.error(), 0);
}

TEST(FolderReader, GivesTheNamesOfWhatCannotBeLookedAt) {
    test::asOrdinaryUser([] {
        const fs::path folder = freshFolder();
        fs::create_directory(folder / "folder");
        write(folder / "file");
        fs::permissions(folder, fs::perms::owner_read);
        kindsAreUnknown = true;
        FolderReader reader(folder);
        EXPECT_THAT(entriesOf(std::move(reader)),
                    UnorderedElementsAre(Pair("folder", EntryKind::other), Pair("file", EntryKind::other)));
    });
}

TEST(FolderReader, GivesHiddenNamesButNotTheFolderItself) {
    const fs::path folder = freshFolder();
    write(folder / ".hidden");
    write(folder / "...");
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair(".hidden", EntryKind::other), Pair("...", EntryKind::other)));
}

TEST(FolderReader, GivesNamesAsTheirBytes) {
    const fs::path folder = freshFolder();
    write(folder / "caf\xE9\n.wav");
    write(folder / std::string(255, 'x'));
    EXPECT_THAT(entriesOf(FolderReader(folder)),
                UnorderedElementsAre(Pair("caf\xE9\n.wav", EntryKind::other),
                                     Pair(std::string(255, 'x'), EntryKind::other)));
}

TEST(FolderReader, FindsNothingInWhatIsNotAFolder) {
    const fs::path folder = freshFolder();
    EXPECT_THAT(entriesOf(FolderReader(folder)), testing::IsEmpty());
    EXPECT_THAT(entriesOf(FolderReader(folder / "missing")), testing::IsEmpty());
    EXPECT_THAT(entriesOf(FolderReader(write(folder / "file"))), testing::IsEmpty());
    EXPECT_THAT(entriesOf(FolderReader(FileDescriptor())), testing::IsEmpty());
}

TEST(FolderReader, TellsAnErrorFromTheEnd) {
    const fs::path folder = freshFolder();
    FolderReader whole(folder);
    EXPECT_FALSE(whole.next());
    EXPECT_EQ(whole.error(), 0);
    EXPECT_EQ(FolderReader(folder / "missing").error(), ENOENT);
    EXPECT_EQ(FolderReader(write(folder / "file")).error(), ENOTDIR);
}

TEST(FolderReader, OpensAFolderThroughALink) {
    const fs::path folder = freshFolder();
    write(folder / "real" / "file");
    fs::create_symlink("real", folder / "link");
    EXPECT_THAT(entriesOf(FolderReader(folder / "link")),
                UnorderedElementsAre(Pair("file", EntryKind::other)));
}

} // namespace

} // namespace velmora
