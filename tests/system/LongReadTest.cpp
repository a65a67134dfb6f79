// What is asked of the kernel for long reads. What is in memory depends on the machine and its file systems,
// so here this program answers for the kernel: whether bytes are there, and what it was asked to read ahead.

#include "system/RegularFile.h"
#include "tests/support/Files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <numeric>
#include <utility>
#include <vector>

namespace {

struct {
    std::int64_t inMemory = 0;                                 // bytes at the start of every file
    int wasAsked = 0;                                          // how often
    std::vector<std::pair<std::int64_t, std::int64_t>> wanted; // where, and how many
} kernel;

} // namespace

ssize_t preadv2(int file, const iovec* pieces, int /*count*/, off_t offset, int /*flags*/) noexcept(false) {
    ++kernel.wasAsked;
    if (offset >= kernel.inMemory) {
        errno = EAGAIN;
        return -1;
    }
    const std::int64_t there = std::min<std::int64_t>(kernel.inMemory - offset, pieces->iov_len);
    return ::pread(file, pieces->iov_base, static_cast<std::size_t>(there), offset);
}

int posix_fadvise(int /*file*/, off_t offset, off_t bytes, int advice) noexcept {
    EXPECT_EQ(advice, POSIX_FADV_WILLNEED);
    kernel.wanted.emplace_back(offset, bytes);
    return 0;
}

namespace velmora {

namespace {

using testing::IsEmpty;
using testing::Le;
namespace fs = std::filesystem;

constexpr std::int64_t megabyte = 1 << 20;

class LongRead : public testing::Test {
protected:
    LongRead() { kernel = {}; }

    static RegularFile fileOn(Storage storage) {
        const fs::path path = test::write(test::freshFolder() / "a.aac", "start");
        fs::resize_file(path, fileBytes);
        return {FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), fileBytes, storage};
    }

    /// Reads the file from front to back in pieces of `count` bytes.
    static void readThrough(const RegularFile& file, std::size_t count) {
        std::vector<std::uint8_t> buffer(count);
        std::int64_t offset = 0;
        while (const std::size_t got = file.readAt(offset, buffer).value_or(0)) {
            EXPECT_EQ(buffer.front(), offset == 0 ? 's' : '\0');
            offset += static_cast<std::int64_t>(got);
        }
        EXPECT_EQ(offset, fileBytes);
    }

    static constexpr std::int64_t fileBytes = 20 * megabyte + 5;
};

/// Where the requests made so far begin and end, where they follow each other without a gap.
std::pair<std::int64_t, std::int64_t> wantedRange() {
    std::int64_t end = kernel.wanted.front().first;
    for (const auto& [offset, bytes] : kernel.wanted) {
        EXPECT_EQ(offset, end);
        EXPECT_THAT(bytes, Le(128 << 10)) << "more than a kernel reads ahead at once";
        end = offset + bytes;
    }
    return {kernel.wanted.front().first, end};
}

TEST_F(LongRead, AsksASlowDeviceForWhatFollowsAndForNothingTwice) {
    for (const StorageKind storage : {StorageKind::rotating, StorageKind::network}) {
        kernel = {};
        readThrough(fileOn({storage}), RegularFile::longRead);
        ASSERT_FALSE(kernel.wanted.empty());
        EXPECT_EQ(wantedRange(), std::pair(std::int64_t{0}, fileBytes));
    }
}

TEST_F(LongRead, AsksForOneRunAtATime) {
    const RegularFile file = fileOn({StorageKind::rotating});
    std::vector<std::uint8_t> buffer(RegularFile::longRead);
    file.readAt(megabyte, buffer);
    ASSERT_FALSE(kernel.wanted.empty());
    EXPECT_EQ(wantedRange(), std::pair(megabyte, megabyte + RegularFile::runBytes));
}

TEST_F(LongRead, AsksOnceWhatIsInMemoryEnds) {
    kernel.inMemory = 5 * megabyte;
    readThrough(fileOn({StorageKind::rotating}), RegularFile::longRead);
    ASSERT_FALSE(kernel.wanted.empty());
    EXPECT_EQ(wantedRange(), std::pair(5 * megabyte, fileBytes));
}

TEST_F(LongRead, AsksAgainForWhatStandsBefore) {
    const RegularFile file = fileOn({StorageKind::rotating});
    std::vector<std::uint8_t> buffer(RegularFile::longRead);
    file.readAt(10 * megabyte, buffer);
    kernel.wanted.clear();
    file.readAt(0, buffer);
    ASSERT_FALSE(kernel.wanted.empty());
    EXPECT_EQ(wantedRange(), std::pair(std::int64_t{0}, RegularFile::runBytes));
}

TEST_F(LongRead, AsksForNothingThatIsInMemory) {
    kernel.inMemory = 21 * megabyte;
    readThrough(fileOn({StorageKind::rotating}), RegularFile::longRead);
    EXPECT_THAT(kernel.wanted, IsEmpty());
}

TEST_F(LongRead, AsksNothingOfAQuickDevice) {
    readThrough(fileOn({StorageKind::quick}), RegularFile::longRead);
    EXPECT_THAT(kernel.wanted, IsEmpty());
    EXPECT_EQ(kernel.wasAsked, 0);
}

TEST_F(LongRead, AsksNothingWhereTheKernelReadsFarAheadItself) {
    readThrough(fileOn({StorageKind::rotating, true}), RegularFile::longRead);
    EXPECT_THAT(kernel.wanted, IsEmpty());
}

TEST_F(LongRead, ShortReadsAskForNothing) {
    readThrough(fileOn({StorageKind::rotating}), RegularFile::longRead - 1);
    EXPECT_THAT(kernel.wanted, IsEmpty());
    EXPECT_EQ(kernel.wasAsked, 0);
}

TEST_F(LongRead, BeforeTheStartFailsAsAnyOther) {
    std::vector<std::uint8_t> buffer(RegularFile::longRead);
    EXPECT_EQ(fileOn({StorageKind::rotating}).readAt(-1, buffer), std::nullopt);
    EXPECT_EQ(kernel.wasAsked, 0);
}

TEST_F(LongRead, WillNeedKeepsWithinTheFile) {
    const RegularFile file = fileOn({StorageKind::network});
    file.willNeed(-3, 10);
    file.willNeed(fileBytes - 7, 100);
    file.willNeed(fileBytes, 100);
    EXPECT_EQ(kernel.wanted, (decltype(kernel.wanted){{0, 7}, {fileBytes - 7, 7}}));
}

} // namespace

} // namespace velmora
