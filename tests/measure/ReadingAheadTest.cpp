// What is asked for ahead of a measurement, against what the measurement then reads. This program is told in
// the kernel's place what to read ahead.

#include "measure/ReadingAhead.h"

#include "measure/HeaderDuration.h"
#include "measure/MediaDuration.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

struct AskedRange {
    std::int64_t begin;
    std::int64_t end;
};

std::vector<AskedRange> askedRanges;

} // namespace

int posix_fadvise(int /*file*/, off_t offset, off_t bytes, int /*advice*/) noexcept {
    askedRanges.push_back({offset, offset + bytes});
    return 0;
}

namespace velmora::test {
namespace {

bool wasAskedFor(std::int64_t byte) {
    return std::ranges::any_of(
        askedRanges, [byte](const AskedRange& range) { return byte >= range.begin && byte < range.end; });
}

/// The bytes of `file`; each read must be one of those asked for.
ByteSource watched(const RegularFile& file) {
    ByteSource source = sourceOf(file);
    source.readAt = [readAt = source.readAt](std::int64_t offset, std::span<std::uint8_t> buffer) {
        EXPECT_TRUE(wasAskedFor(offset)) << offset;
        const auto last = offset + static_cast<std::int64_t>(buffer.size()) - 1;
        EXPECT_TRUE(wasAskedFor(last)) << last;
        return readAt(offset, buffer);
    };
    return source;
}

class ReadingAhead : public testing::TestWithParam<const char*> {
protected:
    ReadingAhead() { askedRanges.clear(); }
};

TEST_P(ReadingAhead, AsksForAllThatIsReadOfACommonFile) {
    const fs::path path = freshFolder() / (std::string("a.") + GetParam());
    const AudioShape shape{.frames = 12 * 44'100};
    if (path.extension() == ".m4a") {
        encodeAudio(path, "ffmpeg -v error -i $IN -movflags +faststart $OUT", shape);
    } else {
        encodeAudio(path, shape);
    }
    Collector::readAhead(path);
    const std::optional<RegularFile> file = RegularFile::open(path);
    ASSERT_TRUE(file);
    const bool isTimed = HeaderDuration::timed(path, watched(*file)) ||
                         std::holds_alternative<Timed>(mediaDuration(watched(*file), path, {}).answer);
    EXPECT_TRUE(isTimed);
    EXPECT_FALSE(wasAskedFor(file->size() / 2));
}

INSTANTIATE_TEST_SUITE_P(Formats, ReadingAhead,
                         testing::Values("mp3", "mpc", "ogg", "opus", "flac", "wv", "m4a", "wav", "wma"),
                         [](const auto& row) { return std::string(row.param); });

TEST(ReadingAheadOf, WhatIsNoRegularFileAsksForNothing) {
    askedRanges.clear();
    const fs::path folder = freshFolder();
    const fs::path fifo = folder / "a.mp3";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    for (const fs::path& path : {fifo, folder, folder / "gone.mp3"}) {
        EXPECT_EQ(Collector::worthAskingFor(path), WorthAsking::nothing) << path;
        Collector::readAhead(path);
    }
    EXPECT_THAT(askedRanges, testing::IsEmpty());
}

/// What is asked of `storage` when a file on it is measured.
std::vector<AskedRange> askedOf(StorageKind storage) {
    askedRanges.clear();
    const fs::path path = write(freshFolder() / "a.mp3", std::string(100'000, ' '));
    const RegularFile file(FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), 100'000, {storage});
    Collector::askForEnd(file, path);
    return askedRanges;
}

TEST(ReadingAheadOf, TheEndIsAskedOfANetworkAlone) {
    askedOf(StorageKind::network);
    EXPECT_TRUE(wasAskedFor(0));
    EXPECT_FALSE(wasAskedFor(50'000));
    EXPECT_TRUE(wasAskedFor(99'999));
    EXPECT_THAT(askedOf(StorageKind::quick), testing::IsEmpty());
    EXPECT_THAT(askedOf(StorageKind::rotating), testing::IsEmpty());
}

} // namespace
} // namespace velmora::test
