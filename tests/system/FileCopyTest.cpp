#include "system/FileCopy.h"

#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace velmora {

namespace {

using test::freshFolder;
using test::namesIn;
using test::read;
using test::write;
namespace fs = std::filesystem;

/// The reason for which the copy failed; no error if it did not.
std::error_code copyError(const fs::path& from, const fs::path& to, const std::stop_token& stop = {}) {
    try {
        copyFile(from, to, stop);
    } catch (const fs::filesystem_error& error) {
        return error.code();
    }
    return {};
}

TEST(FileCopy, CopiesContentAndTimeForTheOwnerAlone) {
    const fs::path folder = freshFolder();
    const fs::path from = write(folder / "a.wav", std::string(100'000, 'x') + "end");
    fs::permissions(from, fs::perms(0444));
    const fs::file_time_type time = fs::last_write_time(from) - std::chrono::hours(1000);
    fs::last_write_time(from, time);

    copyFile(from, folder / "copy.wav");

    EXPECT_EQ(read(folder / "copy.wav"), read(from));
    EXPECT_EQ(fs::last_write_time(folder / "copy.wav"), time);
    EXPECT_EQ(fs::status(folder / "copy.wav").permissions(), fs::perms(0600));
}

TEST(FileCopy, CopiesAnEmptyFile) {
    const fs::path folder = freshFolder();
    copyFile(write(folder / "a.wav"), folder / "copy.wav");
    EXPECT_EQ(fs::file_size(folder / "copy.wav"), 0U);
}

TEST(FileCopy, CopiesAFileOfManySteps) {
    const fs::path folder = freshFolder();
    const fs::path from = write(folder / "a.wav", "start");
    constexpr std::uintmax_t size = (std::uintmax_t{65} << 20) + 3;
    fs::resize_file(from, size); // a hole, then two bytes
    const int descriptor = ::open(from.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(::pwrite(descriptor, "ab", 2, static_cast<off_t>(size) - 2), 2);
    ::close(descriptor);

    copyFile(from, folder / "copy.wav");

    const std::string copy = read(folder / "copy.wav");
    ASSERT_EQ(copy.size(), size);
    EXPECT_EQ(copy.substr(0, 6), std::string("start\0", 6));
    EXPECT_EQ(copy.substr(size - 3), std::string("\0ab", 3));
}

TEST(FileCopy, CopiesWhatTheKernelCannotCopyByItself) {
    const fs::path folder = freshFolder();
    copyFile("/proc/self/status", folder / "copy"); // a size of 0, but content
    EXPECT_NE(read(folder / "copy").find("\nPid:"), std::string::npos);
}

TEST(FileCopy, OverwritesALongerFile) {
    const fs::path folder = freshFolder();
    write(folder / "copy.wav", "something longer");
    copyFile(write(folder / "a.wav", "short"), folder / "copy.wav");
    EXPECT_EQ(read(folder / "copy.wav"), "short");
}

TEST(FileCopy, CopiesWhatALinkLeadsTo) {
    const fs::path folder = freshFolder();
    write(folder / "a.wav", "content");
    fs::create_symlink("a.wav", folder / "link.wav");
    copyFile(folder / "link.wav", folder / "copy.wav");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "copy.wav")));
    EXPECT_EQ(read(folder / "copy.wav"), "content");
}

TEST(FileCopy, RefusesWhatIsNotARegularFile) {
    const fs::path folder = freshFolder();
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(copyError(folder / "fifo", folder / "copy"), std::errc::invalid_argument);
    EXPECT_EQ(copyError(folder, folder / "copy"), std::errc::invalid_argument);
    EXPECT_EQ(copyError(folder / "missing", folder / "copy"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"fifo"});
}

TEST(FileCopy, TellsWhyTheTargetCannotBeMade) {
    const fs::path folder = freshFolder();
    const fs::path from = write(folder / "a.wav", "content");
    EXPECT_EQ(copyError(from, folder / "missing" / "copy"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(copyError(from, folder / std::string(256, 'x')), std::errc::filename_too_long);
    EXPECT_EQ(copyError(from, folder), std::errc::is_a_directory);
}

TEST(FileCopy, LeavesNothingWhenItIsStopped) {
    const fs::path folder = freshFolder();
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(copyError("/proc/self/status", folder / "copy", stop.get_token()),
              std::errc::operation_canceled);
    EXPECT_FALSE(fs::exists(folder / "copy"));
}

TEST(FileCopy, LeavesNothingOnAFullDisk) {
    const fs::path folder = freshFolder();
    fs::create_symlink("/dev/full", folder / "copy");
    EXPECT_EQ(copyError(write(folder / "a.wav", "content"), folder / "copy"), std::errc::no_space_on_device);
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder / "copy")));
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST(FileCopy, LeavesNothingBeyondALimitOnTheSizeOfFiles) {
    const fs::path folder = freshFolder();
    const fs::path from = write(folder / "a.wav", std::string(200'000, 'x'));
    test::inProcess([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100'000, 100'000};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_EQ(copyError(from, folder / "copy"), std::errc::file_too_large);
        EXPECT_FALSE(fs::exists(folder / "copy"));
    });
}

TEST(FileCopy, LeavesTheSourceAlone) {
    const fs::path folder = freshFolder();
    const fs::path from = write(folder / "a.wav", "content");
    copyFile(from, folder / "copy.wav");
    EXPECT_EQ(read(from), "content");
    EXPECT_NE(fs::status(from).permissions(), fs::perms(0600));
}

} // namespace

} // namespace velmora
