// The check of whole files, as the program does it.

#include "tests/cli/ScanProcess.h"
#include "tests/support/Archives.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CheckOption : public testing::Test {
protected:
    CheckOption() {
        encodeAudio(music / "whole.flac");
        writeWav(music / "whole.wav");
    }

    void addCutOffTrack() const {
        const std::string file = read(encodeAudio(music / "cut.flac"));
        write(music / "cut.flac", file.substr(0, file.size() / 2));
    }

    Finished scan(std::vector<std::string> arguments, int columns = 0) const {
        arguments.insert(arguments.begin(), {"--check", music});
        return runToEnd({.arguments = std::move(arguments), .terminalColumns = columns});
    }

    const fs::path music = freshFolder() / "Music";
};

TEST_F(CheckOption, WritesNothingWhereNothingIsFound) {
    const Finished run = scan({});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
}

TEST_F(CheckOption, WritesALineAFindingAndEndsWithOne) {
    addCutOffTrack();
    const Finished run = scan({});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, testing::MatchesRegex("truncated\t3\\.025\t[012]\\.[0-9]+\t" +
                                                  (music / "cut.flac").native() + "\n"));
    EXPECT_EQ(run.errors, "");
}

TEST_F(CheckOption, AddsItsFindingsToJson) {
    addCutOffTrack();
    const Finished run = scan({"--json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("\"kind\": \"truncated\""));
    EXPECT_THAT(run.output, HasSubstr("\"findings\": [\n            ]"));
}

TEST_F(CheckOption, NamesWhatCannotBeReadAsAlways) {
    write(music / "broken.mp3", "no audio");
    const Finished run = scan({});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors,
              "velmora-scan: cannot time '" + (music / "broken.mp3").native() + "': no audio frames\n");
    EXPECT_EQ(runToEnd({.arguments = {"--check", music / "broken.mp3"}}).status, 3);
}

TEST_F(CheckOption, LooksIntoArchives) {
    addCutOffTrack();
    shell("zip -q -r set.zip Music && rm -r Music", music.parent_path());
    const Finished run = runToEnd({.arguments = {"--check", music.parent_path()}});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, StartsWith("truncated\t"));
    EXPECT_THAT(run.output,
                HasSubstr("\t" + (music.parent_path() / "set.zip/Music/cut.flac").native() + "\n"));
}

TEST_F(CheckOption, ShowsHowManyBytesItHasRead) {
    const Finished run = scan({}, 80);
    EXPECT_THAT(run.errors,
                testing::ContainsRegex("CHECKING [0-9.]+ / [0-9.]+ [KM]B  .\x1b.96m#{40}\x1b.0m]\x1b.K"));
}

TEST_F(CheckOption, IsEndedByASignal) {
    fs::resize_file(music / "whole.wav", 60'000'000'000); // all but the start is a hole
    ScanProcess process({.arguments = {"--check", music}, .terminalColumns = 80});
    waitUntil([&] {
        return tryShell("grep -q 'rchar: [0-9]\\{8,\\}' /proc/" + std::to_string(process.id()) + "/io")
                   .status == 0;
    });
    process.send(SIGINT);
    const Finished run = process.wait();
    EXPECT_EQ(run.status, 130);
    EXPECT_EQ(run.output, "");
}

TEST_F(CheckOption, HasItsKindsInTheHelp) {
    const std::string help = runToEnd({.arguments = {"--help"}}).output;
    for (const char* const kind : {"truncated", "longer", "offset", "damaged", "foreign", "trailing"}) {
        EXPECT_THAT(help, HasSubstr("\n      " + std::string(kind) + " ")) << kind;
    }
}

} // namespace
} // namespace velmora::test
