#include "system/RegularFile.h"

#include "tests/support/Files.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>

namespace velmora {

namespace {

using test::freshFolder;
using test::write;
namespace fs = std::filesystem;

std::string readText(const RegularFile& file, std::int64_t offset, std::size_t size) {
    std::vector<std::uint8_t> buffer(size);
    const std::optional<std::size_t> got = file.readAt(offset, buffer);
    return got ? std::string(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(*got)) : "error";
}

/// Expects that `path` is refused with the error `expected`.
void expectRefused(const fs::path& path, int expected) {
    errno = 0;
    const std::optional<RegularFile> file = RegularFile::open(path);
    const int error = errno;
    EXPECT_FALSE(file) << path;
    EXPECT_EQ(error, expected) << path;
}

TEST(RegularFile, ReadsAtAnyPositionUpToItsEnd) {
    const auto file = RegularFile::open(write(freshFolder() / "a.wav", "0123456789"));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->size(), 10);
    EXPECT_EQ(readText(*file, 0, 4), "0123");
    EXPECT_EQ(readText(*file, 7, 4), "789");
    EXPECT_EQ(readText(*file, 10, 4), "");
    EXPECT_EQ(readText(*file, 11, 4), "");
    EXPECT_EQ(readText(*file, 2, 0), "");
}

TEST(RegularFile, FailsToReadBeforeItsStart) {
    const auto file = RegularFile::open(write(freshFolder() / "a.wav", "0123456789"));
    ASSERT_TRUE(file);
    EXPECT_EQ(readText(*file, -1, 4), "error");
}

TEST(RegularFile, FollowsLinks) {
    const fs::path folder = freshFolder();
    write(folder / "a.wav", "content");
    fs::create_symlink("a.wav", folder / "link.wav");
    const auto file = RegularFile::open(folder / "link.wav");
    ASSERT_TRUE(file);
    EXPECT_EQ(readText(*file, 0, 100), "content");
}

TEST(RegularFile, RefusesWhatIsNotARegularFileWithoutBlocking) {
    const fs::path folder = freshFolder();
    ASSERT_EQ(::mkfifo((folder / "fifo.wav").c_str(), 0600), 0);
    fs::create_symlink("fifo.wav", folder / "link-to-fifo.wav");
    fs::create_directory(folder / "folder.wav");

    expectRefused(folder / "fifo.wav", EINVAL);
    expectRefused(folder / "link-to-fifo.wav", EINVAL);
    expectRefused(folder / "folder.wav", EINVAL);
    expectRefused("/dev/null", EINVAL);
    expectRefused("/dev/zero", EINVAL);
}

TEST(RegularFile, RefusesASocket) {
    // A socket's path may have 107 bytes, so it is made from inside its folder.
    const fs::path folder = freshFolder();
    fs::current_path(folder);
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, "socket.wav");
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expectRefused(folder / "socket.wav", ENXIO);
}

TEST(RegularFile, TellsWhyAFileCannotBeOpened) {
    const fs::path folder = freshFolder();
    fs::create_symlink("nowhere", folder / "dangling.wav");
    fs::create_symlink("loop.wav", folder / "loop.wav");
    expectRefused(folder / "missing.wav", ENOENT);
    expectRefused(folder / "dangling.wav", ENOENT);
    expectRefused(folder / "loop.wav", ELOOP);
    expectRefused(folder / std::string(256, 'x'), ENAMETOOLONG);
}

TEST(RegularFile, ClosesItsDescriptorOnEveryPath) {
    const fs::path folder = freshFolder();
    const fs::path path = write(folder / "a.wav");
    const auto openDescriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = openDescriptors();
    {
        std::optional<RegularFile> first = RegularFile::open(path);
        std::optional<RegularFile> second = std::move(first);
        EXPECT_EQ(openDescriptors(), before + 1);
        *second = *RegularFile::open(path);
    }
    EXPECT_FALSE(RegularFile::open(folder));
    EXPECT_EQ(openDescriptors(), before);
}

TEST(FileDescriptor, HandsOverWhatItReleases) {
    FileDescriptor descriptor(::dup(STDOUT_FILENO));
    ASSERT_TRUE(descriptor);
    const int released = descriptor.release();
    EXPECT_FALSE(descriptor);
    EXPECT_EQ(::close(released), 0);
}

} // namespace

} // namespace velmora
