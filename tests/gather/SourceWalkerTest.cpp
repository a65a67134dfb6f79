#include "gather/SourceWalker.h"

#include "records/AudioExtensions.h"
#include "system/RegularFile.h"
#include "tests/gather/Found.h"
#include "tests/support/ForkedProcess.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <set>

namespace velmora {

namespace {

using test::freshFolder;
using test::namesIn;
using test::walked;
using test::write;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
namespace fs = std::filesystem;

const GatherResult nothing;

TEST(SourceWalker, KnowsItsExtensions) {
    const std::set<std::string_view> audio(Collector::audioExts.begin(), Collector::audioExts.end());
    const std::set<std::string_view> archives(Collector::archiveExts.begin(), Collector::archiveExts.end());
    EXPECT_EQ(audio.size(), 37U);
    EXPECT_EQ(archives.size(), 12U);
    for (const std::string_view extension : audio) {
        EXPECT_TRUE(Collector::isAudio(extension)) << extension;
        EXPECT_FALSE(Collector::isArchive(extension)) << extension;
    }
    for (const std::string_view extension : archives) {
        EXPECT_TRUE(Collector::isArchive(extension)) << extension;
        EXPECT_FALSE(Collector::isAudio(extension)) << extension;
    }
    for (const std::string_view extension : {"", "txt", "mp4", "WAV", "ZIP", "wa", "wavx", "tar.gz"}) {
        EXPECT_FALSE(Collector::isAudio(extension) || Collector::isArchive(extension)) << extension;
    }
}

TEST(SourceWalker, FindsAudioInAFolderAndItsSubfolders) {
    const fs::path folder = freshFolder();
    for (const char* name : {"a.WAV", ".hidden.wav", "._a.wav", "notes.txt", "none", "sub/b.flac",
                             "sub/.hidden/c.flac", ".hidden/sub/d.flac", "sub/sub/e.Mp3"}) {
        write(folder / name);
    }
    const GatherResult found = walked(folder);
    EXPECT_THAT(namesIn(found, folder), ElementsAre("a.WAV", "sub/b.flac", "sub/sub/e.Mp3"));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
    EXPECT_THAT(found.temps, IsEmpty());
}

TEST(SourceWalker, FindsEveryKindOfAudioFile) {
    const fs::path folder = freshFolder();
    std::vector<std::string> names;
    for (const std::string_view extension : Collector::audioExts) {
        names.push_back("track." + std::string(extension));
        write(folder / names.back());
    }
    std::sort(names.begin(), names.end());
    EXPECT_THAT(namesIn(walked(folder), folder), ElementsAreArray(names));
}

TEST(SourceWalker, AppendsToWhatWasFoundBefore) {
    const fs::path folder = freshFolder();
    write(folder / "one" / "a.wav");
    write(folder / "two" / "b.wav");
    GatherResult found;
    Collector::walk(folder / "two", 0, found);
    Collector::walk(folder / "one", 0, found);
    Collector::walk(folder / "two", 0, found);
    EXPECT_THAT(found.files, ElementsAre(folder / "two/b.wav", folder / "one/a.wav", folder / "two/b.wav"));
}

TEST(SourceWalker, DroppedFilesNeedNotBeVisible) {
    const fs::path folder = freshFolder();
    const fs::path hidden = write(folder / ".hidden.wav");
    EXPECT_THAT(walked(hidden).files, ElementsAre(hidden));
    EXPECT_THAT(walked(write(folder / ".mp3")).files, ElementsAre(folder / ".mp3"));
    EXPECT_EQ(walked(write(folder / "._x.mp3")), nothing);
    EXPECT_EQ(walked(write(folder / "._x.zip")), nothing);
}

TEST(SourceWalker, LeavesDroppedFilesOfOtherKinds) {
    const fs::path folder = freshFolder();
    for (const char* name : {"notes.txt", "none", "wav", "a.wav.part", "end.", "a.wav "}) {
        EXPECT_EQ(walked(write(folder / name)), nothing) << name;
    }
}

TEST(SourceWalker, FindsNothingWhereNothingIs) {
    const fs::path folder = freshFolder();
    fs::create_symlink("nowhere.wav", folder / "dangling.wav");
    EXPECT_EQ(walked(folder / "missing.wav"), nothing);
    EXPECT_EQ(walked(folder / "missing.wav" / "a.wav"), nothing);
    EXPECT_EQ(walked(folder / "dangling.wav"), nothing);
    EXPECT_EQ(walked(""), nothing);
}

TEST(SourceWalker, NamesWhatItCannotLookAt) {
    const fs::path path = freshFolder() / std::string(256, 'x');
    GatherResult expected;
    expected.unreadableFolders = {{path, ENAMETOOLONG}};
    EXPECT_EQ(walked(path), expected);
}

TEST(SourceWalker, TakesFoldersForFoldersWhateverTheirName) {
    const fs::path folder = freshFolder();
    write(folder / "Set.zip" / "a.wav");
    write(folder / "Live.wav" / "b.wav");
    write(folder / "Player.app" / "Contents" / "c.wav");
    const GatherResult found = walked(folder);
    EXPECT_THAT(namesIn(found, folder),
                ElementsAre("Live.wav/b.wav", "Player.app/Contents/c.wav", "Set.zip/a.wav"));
    EXPECT_THAT(found.skippedArchives, IsEmpty());
    EXPECT_THAT(walked(folder / "Set.zip").files, ElementsAre(folder / "Set.zip/a.wav"));
}

TEST(SourceWalker, WalksADroppedFolderUnderThePathItWasDroppedAs) {
    const fs::path folder = freshFolder();
    write(folder / ".music" / "a.wav");
    fs::create_symlink(".music", folder / "link");
    EXPECT_THAT(walked(folder / ".music").files, ElementsAre(folder / ".music/a.wav"));
    EXPECT_THAT(walked(folder / "link").files, ElementsAre(folder / "link/a.wav"));
    EXPECT_EQ(walked(folder / "link/").files.at(0).native(), (folder / "link/a.wav").native());
    EXPECT_EQ(walked(folder / "./link/../link").files.at(0).native(),
              (folder / "./link/../link/a.wav").native());
}

TEST(SourceWalker, ClassifiesLinksToFilesByTheirOwnName) {
    const fs::path folder = freshFolder();
    write(folder / "files" / "a.wav");
    write(folder / "files" / "notes.txt");
    fs::create_directory(folder / "links");
    fs::create_symlink("../files/notes.txt", folder / "links" / "notes.wav");
    fs::create_symlink("../files/a.wav", folder / "links" / "a.txt");
    fs::create_symlink("nowhere", folder / "links" / "dangling.wav");
    fs::create_symlink("loop.wav", folder / "links" / "loop.wav");
    EXPECT_THAT(namesIn(walked(folder / "links"), folder / "links"),
                ElementsAre("dangling.wav", "loop.wav", "notes.wav"));
    EXPECT_THAT(walked(folder / "links" / "notes.wav").files, ElementsAre(folder / "links" / "notes.wav"));
}

TEST(SourceWalker, ClassifiesLinksToFoldersByTheirOwnNameAndEntersNone) {
    const fs::path folder = freshFolder();
    write(folder / "outside" / "a.wav");
    write(folder / "walked" / "b.wav");
    fs::create_symlink("../outside", folder / "walked" / "link");
    fs::create_symlink("../outside", folder / "walked" / "link.wav");
    fs::create_symlink("../outside", folder / "walked" / "link.zip");
    fs::create_symlink("..", folder / "walked" / "up");
    const GatherResult found = walked(folder / "walked");
    EXPECT_THAT(namesIn(found, folder / "walked"), ElementsAre("b.wav", "link.wav"));
    EXPECT_THAT(found.skippedArchives,
                ElementsAre(SkippedArchive{folder / "walked" / "link.zip", Reason::notRegular}));
}

TEST(SourceWalker, PassesOverItsOwnTemporaryItems) {
    const fs::path temporary = fs::temp_directory_path();
    write(temporary / "a.wav");
    write(temporary / "velmora-1" / "b.wav");
    write(temporary / "velmora-src-1-c.zip", "a working copy");
    write(temporary / "sub" / "velmora-2" / "d.wav"); // a user's own folder
    write(temporary / "Velmora-3" / "e.wav");
    const fs::path link = freshFolder() / "link";
    fs::create_directory_symlink(temporary, link);
    for (const fs::path& name : {temporary, link}) { // by whatever name the directory is walked
        const GatherResult found = walked(name);
        EXPECT_THAT(namesIn(found, name), ElementsAre("Velmora-3/e.wav", "a.wav", "sub/velmora-2/d.wav"));
        EXPECT_THAT(found.skippedArchives, IsEmpty());
    }
    EXPECT_THAT(walked(temporary / "velmora-1").files, ElementsAre(temporary / "velmora-1/b.wav"));
}

TEST(SourceWalker, FindsWhatIsNamedAsAudioButIsNoRegularFile) {
    const fs::path folder = freshFolder();
    ASSERT_EQ(::mkfifo((folder / "fifo.wav").c_str(), 0600), 0);
    EXPECT_THAT(namesIn(walked(folder), folder), ElementsAre("fifo.wav"));
}

TEST(SourceWalker, LeavesOutFoldersThatCannotBeRead) {
    test::asOrdinaryUser([] {
        const fs::path folder = freshFolder();
        write(folder / "a.wav");
        write(folder / "closed" / "b.wav");
        write(folder / "locked" / "c.wav");
        write(folder / "open" / "d.wav");
        fs::permissions(folder / "closed", fs::perms(0));
        fs::permissions(folder / "locked", fs::perms(0400)); // names can be read, files cannot
        EXPECT_THAT(namesIn(walked(folder), folder), ElementsAre("a.wav", "locked/c.wav", "open/d.wav"));
        const fs::path closed = folder / "closed";
        EXPECT_THAT(walked(closed).unreadableFolders, ElementsAre(UnreadableFolder{closed, EACCES}));
        EXPECT_THAT(walked(closed / "b.wav").files, IsEmpty());
        EXPECT_THAT(walked(closed / "b.wav").unreadableFolders,
                    ElementsAre(UnreadableFolder{closed / "b.wav", EACCES}));
    });
}

TEST(SourceWalker, KeepsNamesAsTheirBytes) {
    const fs::path folder = freshFolder();
    const std::vector<std::string> names = test::awkwardNames();
    for (const std::string& name : names) {
        write(folder / name);
    }
    EXPECT_THAT(namesIn(walked(folder), folder), ElementsAreArray(names));
    for (const std::string& name : names) {
        EXPECT_THAT(walked(folder / name).files, ElementsAre(folder / name));
    }
}

TEST(SourceWalker, GoesAsDeepAsAPathMayBeLong) {
    const fs::path folder = freshFolder();
    FileDescriptor current(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string name(30, 'd');
    for (int i = 0; i < 400; ++i) {
        ASSERT_EQ(::mkdirat(current.get(), name.c_str(), 0700), 0);
        current = FileDescriptor(::openat(current.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const FileDescriptor file(::openat(current.get(), "a.wav", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_TRUE(file);
    }
    const std::size_t level = name.size() + 1;
    const std::size_t reachable =
        (PATH_MAX - 1 - folder.native().size()) / level; // folders that can be opened
    EXPECT_EQ(walked(folder).files.size(), reachable);
}

TEST(SourceWalker, NeedsFewDescriptorsHoweverDeepTheFolder) {
    const fs::path folder = freshFolder();
    fs::path deepest = folder;
    for (int i = 0; i < 200; ++i) {
        deepest /= "d";
    }
    write(deepest / "a.wav");
    test::inProcess([&] {
        const rlimit limit{16, 16};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        EXPECT_THAT(walked(folder).files, ElementsAre(deepest / "a.wav"));
    });
}

TEST(SourceWalker, EndsEarlyWhenAsked) {
    const fs::path folder = freshFolder();
    write(folder / "a.wav");
    std::stop_source stop;
    stop.request_stop();
    GatherResult found;
    Collector::walk(folder, 0, found, stop.get_token());
    Collector::walk(folder / "a.wav", 0, found, stop.get_token());
    EXPECT_EQ(found, nothing);
}

} // namespace

} // namespace velmora
