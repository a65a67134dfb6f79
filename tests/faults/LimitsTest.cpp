// Too little of what a process needs: descriptors, threads, memory. Tools that hang, die or never stop
// writing.

#include "tests/faults/Surroundings.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/OwnMounts.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace velmora::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;

void limit(__rlimit_resource resource, rlim_t most) {
    const rlimit both{most, most};
    ::setrlimit(resource, &both);
}

class Limits : public testing::Test {
protected:
    Finished scan(const std::function<void()>& beforeStart) const {
        return runToEnd({.arguments = {"-f", "Set"},
                         .folder = folder,
                         .environment = {{"TMPDIR", temporary}},
                         .beforeStart = beforeStart});
    }

    /// Makes links to 1.wav in `place` until there are so many files.
    static void link(const fs::path& place, int files) {
        for (int i = 2; i <= files; ++i) {
            fs::create_symlink("1.wav", place / (std::to_string(i) + ".wav"));
        }
    }

    const fs::path folder = freshFolder();
    const fs::path set = folder / "Set";
    const fs::path track = writeWav(set / "1.wav", oneSecond);
    const fs::path temporary = freshFolder();
    const std::string trackLine = "1.000\t" + track.native() + "\n";
};

TEST_F(Limits, SixteenDescriptorsAreEnough) {
    shell("zip -q more.zip 1.wav", set);
    const Finished run = scan([] { limit(RLIMIT_NOFILE, 16); });
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, trackLine + "1.000\t" + (set / "more.zip/1.wav").native() + "\n");
    EXPECT_THAT(namesIn(temporary), IsEmpty());
}

TEST_F(Limits, FewerDescriptorsThanAScanNeedsLeaveNothing) {
    for (rlim_t descriptors = 3; descriptors < 16; ++descriptors) {
        const Finished run = scan([=] { limit(RLIMIT_NOFILE, descriptors); });
        EXPECT_FALSE(run.signalled) << descriptors << "\n" << run.errors;
        EXPECT_THAT(run.status, AnyOf(0, 1, 3, 127)) << descriptors;
        EXPECT_TRUE(run.status != 0 || run.output == trackLine) << descriptors;
        EXPECT_TRUE(run.status == 0 || !run.errors.empty()) << descriptors << ": failed without a word";
        EXPECT_THAT(namesIn(temporary), IsEmpty()) << descriptors;
    }
}

TEST_F(Limits, WithoutAThreadMoreTheMainOneMeasures) {
    asOrdinaryUser([&] {
        const Finished run = runToEnd(
            {.arguments = {"-f", "Set"}, .folder = folder, .beforeStart = [] { limit(RLIMIT_NPROC, 0); }});
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.output, trackLine);
    });
}

TEST_F(Limits, WithoutAProcessMoreAnArchiveIsNamed) {
    shell("zip -q more.zip 1.wav", set);
    asOrdinaryUser([&] {
        const Finished run = runToEnd(
            {.arguments = {"-f", "Set"}, .folder = folder, .beforeStart = [] { limit(RLIMIT_NPROC, 0); }});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output, trackLine);
        EXPECT_THAT(run.errors, HasSubstr("cannot unpack '" + (set / "more.zip").native() + "'"));
    });
}

/// Their paths are long enough to take the room that each thread would like to have.
TEST_F(Limits, AHundredThousandFilesFitIn256Megabytes) {
    const fs::path deep = folder / "a" / "b" / "c" / "d" / "e" / "f" / "a folder with a longer name";
    fs::create_directories(deep);
    inOwnMounts([&] {
        mountSmallDisk(deep, std::size_t{64} << 20); // links are made there in no time
        fs::copy(track, deep / "1.wav");
        link(deep, 10'000);
        const Finished run = runToEnd({.arguments = {".", ".", ".", ".", ".", ".", ".", ".", ".", "."},
                                       .folder = deep,
                                       .environment = {{"TMPDIR", temporary}},
                                       .beforeStart = [] { limit(RLIMIT_AS, rlim_t{256} << 20); }});
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.output,
                  "TOTAL RUNTIME  27:46:40   (27 hr  46 min  40 sec)\n100000 audio files — 10 ITEMS\n");
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    });
}

TEST_F(Limits, WithoutMemoryAScanEndsWithAWord) {
    link(set, 1'100); // their list is a large allocation
    for (const char* lasting : {"", "+"}) {
        bool somewhatIsMeasured = false;
        for (int number = 1; number <= 8; ++number) {
            const std::string fault = "malloc:" + std::to_string(number) + lasting + ":ENOMEM";
            const Finished run = runToEnd(
                {.arguments = {"-f", "Set"}, .folder = folder, .environment = meeting(fault, temporary)});
            EXPECT_FALSE(run.signalled) << fault;
            EXPECT_THAT(run.status, AnyOf(0, 1, 3)) << fault;
            EXPECT_EQ(run.status == 0, run.errors.empty()) << fault << run.errors;
            EXPECT_THAT(namesIn(temporary), IsEmpty()) << fault;
            somewhatIsMeasured = somewhatIsMeasured || run.status == 1;
        }
        EXPECT_EQ(somewhatIsMeasured, *lasting == '\0');
    }
}

TEST_F(Limits, AToolThatDiesLeavesItsTurnToTheNext) {
    shell("zip -q more.zip 1.wav", set);
    inOwnMounts([&] {
        replaceTool("/usr/bin/tar", "kill -SEGV $$");
        const Finished run = scan([] {});
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.output, trackLine + "1.000\t" + (set / "more.zip/1.wav").native() + "\n");
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    });
}

TEST_F(Limits, AToolThatIsMissingIsNamedWithWhatItsAbsenceCosts) {
    const Launch asking{.arguments = {"--version", "--verbose"}};
    EXPECT_THAT(runToEnd(asking).output, HasSubstr("  /usr/bin/bsdtar\n"));
    inOwnMounts([&] {
        hideTool("/usr/bin/bsdtar");
        EXPECT_THAT(runToEnd(asking).output,
                    HasSubstr("  /usr/bin/bsdtar: not found, no 7z and no rar archive is unpacked\n"));
    });
}

TEST_F(Limits, AToolThatWritesForEverFillsTheDiskAndIsCleanedUpAfter) {
    shell("zip -q more.zip 1.wav", set);
    inOwnMounts([&] {
        mountSmallDisk(temporary, std::size_t{8} << 20);
        replaceTool("/usr/bin/tar", "exec cat /dev/zero >\"$5/endless.wav\"");
        const Finished run = scan([] {});
        EXPECT_THAT(run.status, AnyOf(0, 1)) << "unpacked by the next tool, or named";
        EXPECT_EQ(run.output.substr(0, trackLine.size()), trackLine);
        const auto endless =
            run.output.find("more.zip/endless.wav"); // zeros, which the next tool leaves there
        EXPECT_TRUE(endless == std::string::npos || run.output[run.output.rfind('\n', endless) + 1] == '-')
            << run.output;
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    });
}

} // namespace
} // namespace velmora::test
