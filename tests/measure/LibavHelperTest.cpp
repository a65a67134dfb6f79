// What a file can do to velmora-libav, and what that costs: this file, and nothing else.

#include "measure/MeasurementPipeline.h"
#include "measure/libav/Libav.h"
#include "tests/measure/HeaderBytes.h"
#include "tests/measure/HelperProcesses.h"
#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

/// RealMedia, which libavformat alone can time.
const fs::path& realMedia() {
    static const fs::path path = encodeAudio(freshFolder() / "track.ra", oneSecond);
    return path;
}

bool isTimed(const fs::path& path) {
    return std::abs(secondsIn(answerForFile(path)) - 1) < 0.1;
}

/// What the helper makes of the content of `realMedia()`, when `harm` is done to it before it gets bytes.
std::optional<Timing> timedUnder(const std::function<void()>& harm, std::stop_token stop = {},
                                 std::chrono::milliseconds deadline = GuardedReader::searchTime) {
    const std::string content = read(realMedia());
    ByteSource source =
        sourceOf(std::span(reinterpret_cast<const std::uint8_t*>(content.data()), content.size()));
    source.readAt = [readAt = source.readAt, &harm](std::int64_t offset, std::span<std::uint8_t> buffer) {
        harm();
        return readAt(offset, buffer);
    };
    GuardedReader reader(source, std::move(stop));
    reader.setBounds({.deadline = GuardedReader::Clock::now() + deadline});
    return libav().duration(reader, 0, "rm", Doubt::unfinished);
}

std::size_t openDescriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

/// Sends `signal` to `targets`, and waits for the end of each of `ending`.
void endBy(int signal, const std::vector<pid_t>& targets, const std::vector<pid_t>& ending) {
    const std::vector<ProcessEnd> ends(ending.begin(), ending.end());
    signalAll(targets, signal);
    EXPECT_TRUE(std::ranges::all_of(ends, &ProcessEnd::comes));
}

} // namespace

TEST(LibavHelper, LosesAFileThatCrashesItAndNoMore) {
    EXPECT_TRUE(timedUnder([] {}));
    EXPECT_FALSE(timedUnder([] { signalAll(helperChildren(), SIGSEGV); }));
    EXPECT_TRUE(isTimed(realMedia()));
}

TEST(LibavHelper, LosesAFileThatHangsItAndNoMore) {
    std::vector<pid_t> hanging;
    const auto hang = [&hanging] {
        hanging = helperChildren();
        signalAll(hanging, SIGSTOP);
    };
    EXPECT_FALSE(timedUnder(hang, {}, std::chrono::milliseconds(500)));
    ASSERT_THAT(hanging, SizeIs(1));
    EXPECT_TRUE(isTimed(realMedia()));
    EXPECT_THAT(helperChildren(), Not(testing::Contains(hanging.front())));
}

TEST(LibavHelper, IsKilledWhenTheMeasurementIsStopped) {
    std::stop_source stop;
    const auto hangAndStop = [&stop] {
        const std::vector<pid_t> children = helperChildren();
        signalAll(children, SIGSTOP);
        const ProcessEnd end(children.front());
        stop.request_stop();
        EXPECT_TRUE(end.comes()); // nobody looks at the deadline while bytes are read here
    };
    EXPECT_FALSE(timedUnder(hangAndStop, stop.get_token()));
    EXPECT_TRUE(isTimed(realMedia()));
}

TEST(LibavHelper, StartsAgainWhenItEndedBetweenTwoFiles) {
    EXPECT_TRUE(isTimed(realMedia()));
    endBy(SIGSEGV, helperChildren(), helperChildren());
    EXPECT_TRUE(isTimed(realMedia()));
    endBy(SIGKILL, helpersBelow(::getpid()), helperChildren());
    EXPECT_TRUE(isTimed(realMedia()));
    EXPECT_THAT(helpersBelow(::getpid()), SizeIs(1)); // the one before is no zombie
}

TEST(LibavHelper, LeaksNeitherDescriptorsNorProcesses) {
    EXPECT_TRUE(isTimed(realMedia()));
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 200; ++i) {
        EXPECT_TRUE(isTimed(realMedia()));
        if (i % 20 == 0) {
            EXPECT_FALSE(timedUnder([] { signalAll(helperChildren(), SIGSEGV); }));
        }
    }
    EXPECT_TRUE(isTimed(realMedia()));
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_THAT(helperChildren(), SizeIs(1));
}

TEST(LibavHelper, EndsWithTheProgramHoweverThatEnds) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const fs::path file = realMedia(); // made before, so that this process alone removes it
    const pid_t program = ::fork();
    if (program == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const char done = isTimed(file) ? 'y' : 'n';
        [[maybe_unused]] const ssize_t written = ::write(pipe[1], &done, 1);
        ::pause();
    }
    char done = 0;
    ASSERT_EQ(::read(pipe[0], &done, 1), 1);
    EXPECT_EQ(done, 'y');
    const std::vector<pid_t> helpers = helpersBelow(program);
    ASSERT_THAT(helpers, SizeIs(1));
    const std::vector<pid_t> children = helpersBelow(helpers.front());
    ASSERT_THAT(children, SizeIs(1));
    const ProcessEnd helperEnd(helpers.front());
    const ProcessEnd childEnd(children.front());
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    EXPECT_TRUE(helperEnd.comes());
    EXPECT_TRUE(childEnd.comes());
}

TEST(LibavHelper, MakesNoCallThatReachesFilesNetworkOrProcesses) {
    const ShellResult result = tryShell(shellWord(VELMORA_LIBAV) + " --check-filter");
    EXPECT_EQ(result.status, 0) << result.output;
    for (const char* const call : {"openat", "open", "socket", "connect", "execve", "clone", "kill"}) {
        EXPECT_THAT(result.output, HasSubstr(call + std::string(": refused")));
    }
    EXPECT_THAT(result.output, Not(HasSubstr("NOT REFUSED")));
}

TEST(LibavHelper, TakesNoMoreMemoryThanItsLimit) {
    EXPECT_TRUE(timedUnder([] {}));
    const std::vector<pid_t> children = helperChildren();
    ASSERT_THAT(children, SizeIs(1));
    const long before = statusNumber(children.front(), "VmPeak");
    ASSERT_GT(before, 0);
    const std::string format =
        riffChunk("fmt ", le(1, 2) + le(1, 2) + le(8000, 4) + le(16'000, 4) + le(2, 2) + le(16, 2));
    const std::string head = "RIFF" + le(0, 4) + "WAVE" + format + "LIST" + le(0x7FFF'FF80, 4) + "INFO" +
                             "ISFT" + le(0x7FFF'FF00, 4);
    const fs::path path = write(freshFolder() / "claims.wav", head);
    fs::resize_file(path, 3LL << 30);
    const std::optional<RegularFile> file = RegularFile::open(path);
    ASSERT_TRUE(file);
    GuardedReader reader(sourceOf(*file), {});
    EXPECT_FALSE(libav().duration(reader, 0, "wav", Doubt::none));
    ASSERT_EQ(helperChildren(), children);
    EXPECT_LE(statusNumber(children.front(), "VmPeak") - before, 64'000);
}

TEST(LibavHelper, GivesTheSameAnswerByFileAndByBytes) {
    const std::string content = read(realMedia());
    const Bytes bytes(content.begin(), content.end());
    ByteSource source = sourceOf(std::span(bytes));
    std::int64_t bytesRead = 0;
    source.readAt = [readAt = source.readAt, &bytesRead](std::int64_t offset,
                                                         std::span<std::uint8_t> buffer) {
        const std::optional<std::size_t> got = readAt(offset, buffer);
        bytesRead += static_cast<std::int64_t>(got.value_or(0));
        return got;
    };
    const MediaFinding inMemory = mediaDuration(source, realMedia(), {});
    const Collector::Explanation inFile = Collector::explain(realMedia(), {});
    EXPECT_EQ(secondsIn(inMemory.answer), inFile.measured.seconds);
    EXPECT_EQ(inMemory.budgetLeft, inFile.budgetLeft);
    EXPECT_EQ(bytesRead, inFile.bytesRead);
}

TEST(LibavHelper, TellsOfAReadThatFails) {
    for (const int access : {O_RDONLY, O_WRONLY}) { // what may only be written cannot be read
        const FileDescriptor file(::open(realMedia().c_str(), access | O_CLOEXEC));
        std::vector<std::pair<bool, bool>> told;
        const ByteSource source{.size = static_cast<std::int64_t>(fs::file_size(realMedia())),
                                .readAt = {},
                                .descriptor = file.get(),
                                .noteReads = [&told](std::int64_t bytes, bool hasFailed) {
                                    told.emplace_back(bytes > 0, hasFailed);
                                }};
        GuardedReader reader(source, {});
        const bool isReadable = access == O_RDONLY;
        EXPECT_EQ(libav().duration(reader, 0, "rm", Doubt::unfinished).has_value(), isReadable);
        EXPECT_THAT(told, testing::ElementsAre(std::pair(isReadable, !isReadable)));
    }
}

TEST(LibavHelper, IsFoundBesideTheProgramAndMissedAlone) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "bin");
    fs::create_directory(folder / "music");
    fs::copy_file(VELMORA_SCAN, folder / "bin/velmora-scan");
    fs::copy_file(realMedia(), folder / "music/a.ra");
    const auto report = [&folder] {
        return tryShell("bin/velmora-scan -q --files music 2>/dev/null", folder).output;
    };
    writeWav(folder / "music/b.wav", oneSecond);
    EXPECT_THAT(report(), AllOf(HasSubstr("-\t"), HasSubstr("1.000\t")));
    fs::create_directory_symlink(fs::path(VELMORA_LIBAV).parent_path().parent_path(), folder / "libexec");
    EXPECT_THAT(report(), AllOf(Not(HasSubstr("-\t")), HasSubstr("1.000\t")));
}

} // namespace velmora::test
