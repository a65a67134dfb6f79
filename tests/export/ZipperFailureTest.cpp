#include "export/ZipWriter.h"
#include "export/Zipper.h"
#include "system/Paths.h"
#include "tests/export/ChildRun.h"
#include "tests/export/ZipReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>

namespace velmora::test {

namespace {

using testing::IsEmpty;

/// What the user is told of the export; "" when it succeeds.
std::string failureOf(const std::function<void()>& work) {
    try {
        work();
        return "";
    } catch (const std::exception& error) {
        return Zipper::description(error);
    }
}

std::string failureOfZip(const Paths& files, const fs::path& destination) {
    return failureOf([&] { Zipper::zip(files, {}, destination, [](int, int) {}); });
}

std::string reason(std::errc code) {
    return std::make_error_code(code).message();
}

class ZipperFailureTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_THAT(temporaryItems(), IsEmpty()); }

    bool keepsOldArchive() const { return read(destination) == "old"; }

    const fs::path folder = freshFolder();
    const fs::path destination = write(folder / "out/Mix.zip", "old");
    const fs::path song = write(folder / "song.mp3", std::string(60000, 's'));
};

TEST_F(ZipperFailureTest, NamesAFileThatVanished) {
    EXPECT_EQ(failureOfZip({song, folder / "gone.mp3"}, destination),
              "gone.mp3: " + reason(std::errc::no_such_file_or_directory));
    EXPECT_TRUE(keepsOldArchive());
}

TEST_F(ZipperFailureTest, RefusesWhatIsNotARegularFile) {
    const fs::path pipe = folder / "pipe.wav";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink(pipe, folder / "link.wav");
    for (const fs::path& path : {pipe, folder / "link.wav", folder, fs::path("/")}) {
        EXPECT_THAT(failureOfZip({path}, destination),
                    testing::EndsWith(": " + reason(std::errc::invalid_argument)))
            << path;
        EXPECT_TRUE(keepsOldArchive());
    }
}

TEST_F(ZipperFailureTest, LeavesAFolderAtTheDestinationAlone) {
    const fs::path album = folder / "Album.zip";
    write(album / "content");
    fs::create_directory(folder / "empty.zip");
    fs::create_directory_symlink(album, folder / "link.zip");
    for (const char* name : {"Album.zip", "empty.zip", "link.zip"}) {
        EXPECT_EQ(failureOfZip({song}, folder / name), name + (": " + reason(std::errc::is_a_directory)));
        EXPECT_TRUE(fs::is_directory(folder / name));
    }
    EXPECT_TRUE(fs::exists(album / "content"));
    EXPECT_TRUE(fs::is_symlink(folder / "link.zip"));
}

TEST_F(ZipperFailureTest, LeavesWhatIsNoFileAtTheDestinationAlone) {
    const fs::path pipe = folder / "pipe.zip";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(failureOfZip({song}, pipe), "pipe.zip: It is not a regular file.");
    EXPECT_TRUE(fs::is_fifo(pipe));

    const fs::path link = folder / "device.zip";
    fs::create_symlink("/dev/null", link);
    EXPECT_EQ(failureOfZip({song}, link), "device.zip: It is not a regular file.");
    EXPECT_TRUE(fs::is_symlink(link));
}

TEST_F(ZipperFailureTest, ReportsADestinationWithoutItsFolder) {
    EXPECT_EQ(failureOfZip({song}, folder / "missing/Mix.zip"),
              "Mix.zip: " + reason(std::errc::no_such_file_or_directory));
    EXPECT_EQ(failureOfZip({song}, folder / "song.mp3/Mix.zip"),
              "Mix.zip: " + reason(std::errc::not_a_directory));
    EXPECT_EQ(failureOfZip({song}, folder / (std::string(256, 'n') + ".zip")),
              std::string(256, 'n') + ".zip: " + reason(std::errc::filename_too_long));
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

/// An ordinary user with a temporary directory of its own; the rest of the tests' files can be read.
class OrdinaryUserTest : public ZipperFailureTest {
protected:
    OrdinaryUserTest() {
        for (fs::path path = temporary; path != fs::temp_directory_path().parent_path();
             path = path.parent_path()) {
            fs::permissions(path, fs::perms(0755));
        }
        fs::permissions(temporary, fs::perms::all);
    }

    std::string zipAsOrdinaryUser(const Paths& files) {
        std::string failure = inChild([&] {
            becomeOrdinaryUser();
            ::setenv("TMPDIR", temporary.c_str(), 1);
            return failureOfZip(files, destination);
        });
        EXPECT_THAT(namesIn(temporary), IsEmpty());
        EXPECT_TRUE(keepsOldArchive());
        return failure;
    }

    const fs::path temporary = freshFolder();
};

TEST_F(OrdinaryUserTest, IsToldOfAnUnwritableDestination) {
    fs::permissions(destination.parent_path(), fs::perms(0555));
    EXPECT_EQ(zipAsOrdinaryUser({song}), "Mix.zip: " + reason(std::errc::permission_denied));
    fs::permissions(destination.parent_path(), fs::perms(0755));
}

TEST_F(OrdinaryUserTest, IsToldOfAnUnreadableFile) {
    fs::permissions(song, fs::perms::none);
    EXPECT_EQ(zipAsOrdinaryUser({song}), "song.mp3: " + reason(std::errc::permission_denied));
}

TEST_F(OrdinaryUserTest, IsToldOfAnUnwritableTemporaryDirectory) {
    fs::permissions(temporary, fs::perms(0555));
    EXPECT_EQ(zipAsOrdinaryUser({song}),
              temporary.filename().native() + ": " + reason(std::errc::permission_denied));
}

/// As on a full disk, writing fails: beyond `limit` bytes in a file.
std::string zipWithLimit(rlim_t limit, const Paths& files, const fs::path& destination) {
    return inChild([&] {
        const rlimit limits = {limit, limit};
        ::setrlimit(RLIMIT_FSIZE, &limits);
        std::signal(SIGXFSZ, SIG_IGN);
        return failureOfZip(files, destination);
    });
}

TEST_F(ZipperFailureTest, ReportsAFullDiskWhileStaging) {
    EXPECT_EQ(zipWithLimit(50000, {song}, destination), "song.mp3: " + reason(std::errc::file_too_large));
    EXPECT_TRUE(keepsOldArchive());
}

TEST_F(ZipperFailureTest, ReportsAFullDiskWhileWritingTheArchive) {
    const fs::path second = write(folder / "second.mp3", std::string(60000, '2'));
    EXPECT_EQ(zipWithLimit(100000, {song, second}, destination),
              "Mix.zip: " + reason(std::errc::file_too_large));
    EXPECT_TRUE(keepsOldArchive());
}

TEST_F(ZipperFailureTest, EndsStagingWhenStopped) {
    std::stop_source stop;
    int calls = 0;
    const std::string failure = failureOf([&] {
        const Paths files = {song, write(folder / "2.mp3", "2"), write(folder / "3.mp3", "3")};
        Zipper::zip(
            files, {}, destination,
            [&](int done, int) {
                calls = done;
                if (done == 2) {
                    stop.request_stop();
                }
            },
            stop.get_token());
    });
    EXPECT_THAT(failure, testing::EndsWith(reason(std::errc::operation_canceled)));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(keepsOldArchive());
}

TEST_F(ZipperFailureTest, EndsWritingWhenStopped) {
    std::stop_source stop;
    try {
        Zipper::zip(
            {song}, {}, destination, [&](int, int) { stop.request_stop(); }, stop.get_token());
        FAIL() << "was not stopped";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::operation_canceled);
    }
    EXPECT_TRUE(keepsOldArchive());
}

TEST_F(ZipperFailureTest, NamesAStagedFileThatVanished) {
    const fs::path content = folder / "Mix";
    fs::create_directory(content);
    EXPECT_EQ(failureOf([&] { writeZip(folder / "new.zip", content, {"gone.mp3"}); }),
              "gone.mp3: " + reason(std::errc::no_such_file_or_directory));
    EXPECT_FALSE(fs::exists(folder / "new.zip"));
}

TEST_F(ZipperFailureTest, HasATextOfItsOwnForAnArchiveThatLibzipRefuses) {
    write(folder / "Mix/01.mp3", "content");
    try {
        writeZip(folder / "new.zip", folder / "Mix", {"01.mp3", "01.mp3"});
        FAIL() << "two entries of one name";
    } catch (const std::system_error& error) {
        EXPECT_STREQ(error.code().category().name(), "Velmora");
        EXPECT_EQ(error.code().category(), Zipper::errorDomain());
        EXPECT_EQ(error.code().value(), 1);
        EXPECT_EQ(Zipper::description(error), "The archive could not be written.");
    }
    EXPECT_FALSE(fs::exists(folder / "new.zip"));
}

TEST(Description, NamesTheFileIfThereIsOne) {
    const std::error_code gone = std::make_error_code(std::errc::no_such_file_or_directory);
    EXPECT_EQ(Zipper::description(fs::filesystem_error("what", "/a/01.wav", gone)),
              "01.wav: " + gone.message());
    EXPECT_EQ(Zipper::description(fs::filesystem_error("what", "/a/Album/", gone)),
              "Album: " + gone.message());
    EXPECT_EQ(Zipper::description(fs::filesystem_error("what", gone)), gone.message());
    EXPECT_EQ(Zipper::description(std::system_error(gone, "what")), gone.message());
    EXPECT_EQ(Zipper::description(std::runtime_error("text")), "text");
}

} // namespace

} // namespace velmora::test
