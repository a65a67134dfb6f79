#include "gather/ToolRunner.h"

#include "tests/support/Archives.h"
#include "tests/support/ForkedProcess.h"

#include <gtest/gtest.h>

namespace velmora {

namespace {

using Collector::run;
using Collector::runCapturing;
using Collector::ToolEnd;
using test::freshFolder;
using test::read;
using test::write;
namespace fs = std::filesystem;

ChildLimits stopped() {
    std::stop_source stop;
    stop.request_stop();
    return {.stop = stop.get_token()};
}

bool captureShell(const std::string& script, const fs::path& out) {
    return runCapturing("/bin/sh", {"-c", script}, out).succeeded;
}

TEST(ToolRunner, SucceedsWhenTheToolDoes) {
    EXPECT_TRUE(run("/bin/sh", {"-c", "exit 0"}));
    EXPECT_FALSE(run("/bin/sh", {"-c", "exit 1"}));
    EXPECT_FALSE(run("/bin/sh", {"-c", "kill -KILL $$"}));
    EXPECT_FALSE(run("/usr/bin/ditto-is-not-here", {}));
    EXPECT_FALSE(run("/usr/bin/true", {}, {}, stopped()));
}

TEST(ToolRunner, TellsHowTheToolEnded) {
    const ToolEnd end = run("/bin/sh", {"-c", "echo output; echo why >&2; exit 7"});
    EXPECT_EQ(end.status, 7);
    EXPECT_EQ(end.errors, "why\n");
    EXPECT_EQ(run("/usr/bin/ditto-is-not-here", {}).status, std::nullopt);
    EXPECT_EQ(run("/usr/bin/true", {}, {}, stopped()).status, ToolEnd::notStarted);
}

TEST(ToolRunner, KeepsTheFirstMessagesAndTakesAll) {
    const ToolEnd end = run("/bin/sh", {"-c", "echo first >&2; yes 2>/dev/null | head -c 1000000 >&2"});
    EXPECT_TRUE(end);
    EXPECT_EQ(end.errors.size(), 4096U);
    EXPECT_EQ(end.errors.substr(0, 8), "first\ny\n");
}

TEST(ToolRunner, CapturesWhatTheToolWrites) {
    const fs::path out = freshFolder() / "out";
    EXPECT_TRUE(captureShell("printf 'a\\0b'; echo noise >&2", out));
    EXPECT_EQ(read(out), std::string("a\0b", 3));
}

TEST(ToolRunner, ReplacesTheFileThatIsThere) {
    const fs::path out = write(freshFolder() / "out", "something longer");
    EXPECT_TRUE(captureShell("printf new", out));
    EXPECT_EQ(read(out), "new");
}

TEST(ToolRunner, LeavesNoOutputOfAFailedTool) {
    const fs::path out = freshFolder() / "out";
    EXPECT_FALSE(captureShell("echo part; exit 1", out));
    EXPECT_FALSE(fs::exists(out));
    EXPECT_FALSE(captureShell("echo part; kill -KILL $$", out));
    EXPECT_FALSE(fs::exists(out));
    EXPECT_FALSE(runCapturing("/bin/echo", {"x"}, out, {}, stopped()));
    EXPECT_FALSE(fs::exists(out));
}

TEST(ToolRunner, CountsAnEmptyOutputAsFailure) {
    const fs::path archive = test::compress(freshFolder() / "nothing.gz", "");
    const fs::path out = freshFolder() / "out";
    EXPECT_FALSE(runCapturing("/usr/bin/gunzip", {"-c", archive}, out));
    EXPECT_FALSE(fs::exists(out));
}

TEST(ToolRunner, FailsWithoutATool) {
    const fs::path out = freshFolder() / "out";
    EXPECT_FALSE(runCapturing("/usr/bin/ditto-is-not-here", {}, out));
    EXPECT_FALSE(fs::exists(out));
}

TEST(ToolRunner, FailsWhereNoFileCanBeMade) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "out");
    EXPECT_FALSE(captureShell("echo x", folder / "out"));
    EXPECT_TRUE(fs::is_directory(folder / "out"));
    EXPECT_FALSE(captureShell("echo x", folder / "."));
    EXPECT_FALSE(captureShell("echo x", folder / ".."));
    EXPECT_FALSE(captureShell("echo x", folder / "missing" / "out"));
    EXPECT_FALSE(captureShell("echo x", folder / std::string(256, 'x')));
}

TEST(ToolRunner, NeverWritesThroughALink) {
    const fs::path folder = freshFolder();
    const fs::path outside = write(folder / "outside", "untouched");
    fs::create_symlink("outside", folder / "out");
    EXPECT_TRUE(captureShell("printf new", folder / "out"));
    EXPECT_EQ(read(outside), "untouched");
    EXPECT_EQ(read(folder / "out"), "new");
}

} // namespace

} // namespace velmora
