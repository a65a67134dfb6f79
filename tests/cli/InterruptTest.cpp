// Signals while there is something to clean up.

#include "tests/cli/ScanProcess.h"
#include "tests/support/Archives.h"
#include "tests/support/NamedRow.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;

bool extracts() {
    std::error_code ignored;
    for (const fs::path& directory : temporaryPaths("velmora-")) {
        if (fs::file_size(directory / "slow.wav", ignored) + 1 > 1) { // an error gives the largest number
            return true;
        }
    }
    return false;
}

struct SignalCase : NamedRow {
    int number;
};

class EndingSignal : public testing::TestWithParam<SignalCase> {};

TEST_P(EndingSignal, EndsAnExtractionWithoutATrace) {
    const fs::path archive = slowArchive(freshFolder());
    ScanProcess process({.arguments = {archive}});
    waitUntil(&extracts);
    EXPECT_THAT(toolsAtWork(), Not(IsEmpty()));

    process.send(GetParam().number);
    const Finished run = process.wait();

    EXPECT_EQ(run.status, 130);
    EXPECT_FALSE(run.signalled);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(toolsAtWork(), IsEmpty());
    EXPECT_THAT(privateDirectories(), IsEmpty());
    EXPECT_THAT(temporaryItems(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rows, EndingSignal,
                         testing::Values(SignalCase{"Interrupt", SIGINT}, SignalCase{"Terminate", SIGTERM},
                                         SignalCase{"HangUp", SIGHUP}),
                         &rowName<SignalCase>);

TEST(Interrupt, AgainAndAgainLeavesNothingEither) {
    const fs::path archive = slowArchive(freshFolder());
    ScanProcess process({.arguments = {archive}});
    waitUntil(&extracts);

    while (!process.ended()) {
        process.send(SIGINT);
    }

    EXPECT_EQ(process.wait().status, 130);
    EXPECT_THAT(toolsAtWork(), IsEmpty());
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

TEST(Interrupt, EndsMeasuringWithItsTools) {
    const fs::path folder = freshFolder();
    writeSlowTracks(folder);
    ScanProcess process({.arguments = {folder}});
    waitUntil([] { return !toolsAtWork().empty(); });

    process.send(SIGTERM);

    EXPECT_EQ(process.wait().status, 130);
    waitUntil([] { return toolsAtWork().empty(); }); // the helper ends when its socket closes
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

TEST(Interrupt, EndsTheZipAndKeepsTheOldOne) {
    const fs::path folder = freshFolder();
    writeWav(folder / "long.wav", {.frames = 30'000'000, .rate = 44'100, .channels = 1});
    const fs::path zip = write(folder / "Mix.zip", "old");
    ScanProcess process({.arguments = {"-z", zip, folder / "long.wav"}});
    waitUntil([] { return !temporaryPaths("velmora-zip-").empty(); });

    process.send(SIGINT);

    EXPECT_EQ(process.wait().status, 130);
    EXPECT_EQ(read(zip), "old");
    EXPECT_THAT(privateDirectories(), IsEmpty());
    EXPECT_THAT(namesIn(folder), testing::ElementsAre("Mix.zip", "long.wav"));
}

TEST(Interrupt, TakesTheProgressLineBack) {
    const fs::path archive = slowArchive(freshFolder());
    ScanProcess process({.arguments = {archive}, .terminalColumns = 80});
    waitUntil(&extracts);
    process.send(SIGINT);
    EXPECT_THAT(process.wait().errors, EndsWith("\r\x1b[K"));
}

TEST(Interrupt, IsIgnoredWhereTheCallerIgnoresIt) {
    const fs::path archive = slowArchive(freshFolder());
    ScanProcess process({.arguments = {"-l", archive}, .beforeStart = [] { std::signal(SIGHUP, SIG_IGN); }});
    waitUntil(&extracts);

    process.send(SIGHUP);
    const Finished run = process.wait();

    EXPECT_EQ(run.errors, "velmora-scan: cannot time '" + (archive / "slow.wav").native() +
                              "': no audio where it is searched for\n");
    EXPECT_EQ(run.status, 3);
}

} // namespace
} // namespace velmora::test
