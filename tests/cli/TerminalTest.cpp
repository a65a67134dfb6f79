// The progress line, on a real terminal.

#include "tests/cli/ScanProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string cleared = "\r\x1b[K";

class Terminal : public testing::Test {
protected:
    Terminal() {
        for (const char* name : {"1.wav", "2.wav", "3.wav", "4.wav", "5.wav"}) {
            writeWav(folder / "Set" / name, oneSecond);
        }
    }

    Finished scan(std::vector<std::string> arguments,
                  std::vector<std::pair<std::string, std::string>> environment = {}, int columns = 80) const {
        arguments.emplace_back("Set");
        return runToEnd({.arguments = std::move(arguments),
                         .folder = folder,
                         .environment = std::move(environment),
                         .terminalColumns = columns});
    }

    const fs::path folder = freshFolder();
};

TEST_F(Terminal, ShowsEachStageAndTheLastCount) {
    const Finished run = scan({});
    EXPECT_THAT(run.errors, StartsWith("\rREADING SOURCE\x1b[K"));
    EXPECT_THAT(run.errors,
                HasSubstr("\rMEASURING 5 / 5  [\x1b[96m" + std::string(40, '#') + "\x1b[0m]\x1b[K"));
    EXPECT_EQ(run.status, 0);
}

TEST_F(Terminal, TakesTheLineBackAtTheEnd) {
    EXPECT_THAT(scan({}).errors, EndsWith(cleared));
    EXPECT_THAT(scan({}).errors, Not(HasSubstr("\n")));
}

TEST_F(Terminal, ShowsMessagesOnLinesOfTheirOwn) {
    write(folder / "Set" / "broken.mp3", "no audio");
    EXPECT_THAT(scan({}).errors,
                EndsWith(cleared + "velmora-scan: cannot time '" + (folder / "Set" / "broken.mp3").native() +
                         "': no audio frames\r\n"));
}

TEST_F(Terminal, ShowsTheZipToo) {
    const Finished run = scan({"-z", "Mix.zip"});
    EXPECT_THAT(run.errors, HasSubstr("\rZIPPING 5 / 5  ["));
    EXPECT_THAT(run.errors, EndsWith(cleared));
}

TEST_F(Terminal, GetsNoColourWhereNoneIsWanted) {
    EXPECT_THAT(
        scan({}, {{"NO_COLOR", "1"}}).errors,
        AllOf(HasSubstr("MEASURING 5 / 5  [" + std::string(40, '#') + "]"), Not(HasSubstr("\x1b[9"))));
    EXPECT_THAT(scan({}, {{"NO_COLOR", ""}}).errors, HasSubstr("\x1b[96m"));
}

TEST_F(Terminal, ThatIsDumbGetsNoProgress) {
    EXPECT_EQ(scan({}, {{"TERM", "dumb"}}).errors, "");
    EXPECT_EQ(scan({}, {{"TERM", ""}}).errors, "");
}

TEST_F(Terminal, GetsNoProgressWhenQuietIsWanted) {
    EXPECT_EQ(scan({"-q"}).errors, "");
}

TEST_F(Terminal, GetsNoLineAsWideAsItself) {
    const Finished run = scan({}, {}, 12);
    EXPECT_THAT(run.errors, StartsWith("\rREADING SOU\x1b[K"));
    EXPECT_THAT(run.errors, HasSubstr("\rMEASURING 5\x1b[K"));
}

TEST_F(Terminal, GetsTheReportAfterTheProgressHasGone) {
    const std::string command = shellWord(VELMORA_SCAN) + " Set";
    const std::string shown =
        shell("TERM=xterm script -qefc " + shellWord(command) + " /dev/null </dev/null", folder);
    EXPECT_THAT(shown, EndsWith(cleared + "TOTAL RUNTIME  00:00:05   (5 sec)\r\n5 audio files — SET\r\n"));
}

TEST_F(Terminal, IsNeededForProgress) {
    EXPECT_EQ(runToEnd({.arguments = {"Set"}, .folder = folder}).errors, "");
}

} // namespace
} // namespace velmora::test
