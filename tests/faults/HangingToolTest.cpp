// Each tool in its turn never ends: the scan that waits for it can be ended all the same, in order or not,
// and the tool ends with it.

#include "tests/cli/ScanProcess.h"
#include "tests/support/NamedRow.h"
#include "tests/support/OtherPrograms.h"
#include "tests/support/OwnMounts.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::IsEmpty;

struct HangingTool : NamedRow {
    std::string path;
    std::string source;              ///< the name of the file that it is asked about
    std::vector<std::string> before; ///< the tools whose turn comes first
};

class Hanging : public testing::TestWithParam<HangingTool> {
protected:
    Hanging() { write(folder / "set" / GetParam().source, "what no tool sees"); }

    std::vector<std::string> tools() const {
        return programsWorkingIn((temporary / "scan-velmora-").native());
    }

    /// Starts a scan and ends it by `signal` once the tool hangs.
    Finished endedBy(int signal) const {
        for (const std::string& tool : GetParam().before) {
            replaceTool(tool, "exit 1");
        }
        replaceTool(GetParam().path, "exec sleep 1000000");
        ScanProcess process({.arguments = {"set"}, .folder = folder, .environment = {{"TMPDIR", temporary}}});
        waitUntil([this] { return std::ranges::count(tools(), "sleep") == 1; });
        process.send(signal);
        return process.wait();
    }

    const fs::path folder = freshFolder();
    const fs::path temporary = freshFolder();
};

TEST_P(Hanging, EndsWithACancelledScan) {
    inOwnMounts([this] {
        EXPECT_EQ(endedBy(SIGTERM).status, 130);
        waitUntil([this] { return tools().empty(); });
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    });
}

TEST_P(Hanging, EndsWithAScanThatIsKilled) {
    inOwnMounts([this] {
        EXPECT_TRUE(endedBy(SIGKILL).signalled);
        waitUntil([this] { return tools().empty(); });
    });
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Hanging,
    testing::Values(HangingTool{{"Tar"}, "/usr/bin/tar", "a.tar", {}},
                    HangingTool{{"Unzip"}, "/usr/bin/unzip", "a.zip", {"/usr/bin/tar"}},
                    HangingTool{{"Gunzip"}, "/usr/bin/gunzip", "a.gz", {"/usr/bin/tar", "/usr/bin/unzip"}},
                    HangingTool{{"Bunzip2"}, "/usr/bin/bunzip2", "a.bz2", {"/usr/bin/tar", "/usr/bin/unzip"}},
                    HangingTool{{"Bsdtar"}, "/usr/bin/bsdtar", "a.7z", {"/usr/bin/tar", "/usr/bin/unzip"}},
                    HangingTool{{"Ffprobe"}, "/usr/bin/ffprobe", "a.wav", {}}),
    &rowName<HangingTool>);

} // namespace
} // namespace velmora::test
