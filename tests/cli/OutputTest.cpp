// What the program writes and how it ends, for each thing it can be asked.

#include "cli/Options.h"
#include "tests/cli/ScanProcess.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A folder "Live Set" with two tracks of a second, and beside it a file that is no audio.
class VelmoraScan : public testing::Test {
protected:
    Finished scan(std::vector<std::string> arguments) const {
        return runToEnd({.arguments = std::move(arguments), .folder = folder});
    }

    std::string pathOf(std::string_view name) const { return folder / name; }

    const fs::path folder = freshFolder();
    const fs::path first = writeWav(folder / "Live Set" / "1.wav", oneSecond);
    const fs::path second = writeWav(folder / "Live Set" / "2.wav", oneSecond);
    const fs::path broken = write(folder / "broken.mp3", "no audio at all");
    const std::string nothing = "TOTAL RUNTIME  00:00:00   (0 sec)\n0 audio files";
};

TEST_F(VelmoraScan, WritesTheTotal) {
    const Finished run = scan({"Live Set"});
    EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 0);
}

TEST_F(VelmoraScan, WritesTheList) {
    EXPECT_EQ(scan({"-l", "Live Set"}).output, "1.wav\n2.wav\n");
}

TEST_F(VelmoraScan, WritesTheFilesWithTheirSeconds) {
    const Finished run = scan({"--files", "broken.mp3", "Live Set"});
    EXPECT_EQ(run.output,
              "-\t" + broken.native() + "\n1.000\t" + first.native() + "\n1.000\t" + second.native() + "\n");
}

TEST_F(VelmoraScan, NamesWhatItCannotTime) {
    const Finished run = scan({"broken.mp3", "Live Set"});
    EXPECT_EQ(run.errors, "velmora-scan: cannot time '" + broken.native() + "': no audio frames\n");
    EXPECT_THAT(run.output, HasSubstr("2 audio files — 2 ITEMS\n"));
    EXPECT_EQ(run.status, 1);
}

TEST_F(VelmoraScan, NamesWhatItCannotUnpack) {
    write(folder / "broken\x1B.zip", "no archive at all");
    const Finished run = scan({"broken\x1B.zip", "Live Set"});
    EXPECT_EQ(run.errors,
              "velmora-scan: cannot unpack '" + pathOf("broken\\x1B.zip") + "': no tool can unpack it\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(VelmoraScan, NamesAMissingPathAndGoesOn) {
    const Finished run = scan({"missing.wav", "Live Set"});
    EXPECT_EQ(run.errors, "velmora-scan: cannot read 'missing.wav': No such file or directory\n");
    EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(VelmoraScan, EndsWith3WhenNoPathIsThere) {
    const Finished run = scan({"missing.wav"});
    EXPECT_EQ(run.output, nothing + "\n");
    EXPECT_EQ(run.status, 3);
}

TEST_F(VelmoraScan, EndsWith3WhenNothingIsAudio) {
    write(folder / "notes.txt", "text");
    const Finished run = scan({"notes.txt"});
    EXPECT_EQ(run.output, nothing + " — NOTES.TXT\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 3);
}

TEST_F(VelmoraScan, EndsWith3RatherThan1WhenNoFileCanBeTimed) {
    EXPECT_EQ(scan({"broken.mp3", "missing.wav"}).status, 3);
}

TEST_F(VelmoraScan, NamesAFolderItMayNotEnter) {
    fs::create_directory(folder / "shut");
    fs::permissions(folder / "shut", fs::perms::none);
    asOrdinaryUser([&] {
        const Finished run = scan({"shut", "Live Set"});
        EXPECT_EQ(run.errors, "velmora-scan: cannot read 'shut': Permission denied\n");
        EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
        EXPECT_EQ(run.status, 1);
    });
}

TEST_F(VelmoraScan, MeasuresPlainFilesWhereItMayNotMakeADirectory) {
    fs::create_directory(folder / "tmp");
    fs::permissions(folder / "tmp", fs::perms(0555));
    asOrdinaryUser([&] {
        const Finished run = runToEnd(
            {.arguments = {"Live Set"}, .folder = folder, .environment = {{"TMPDIR", folder / "tmp"}}});
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
        EXPECT_EQ(run.status, 0);
    });
}

TEST_F(VelmoraScan, WorksWhereThereAreNoLocks) {
    shell("tar -cf set.tar 'Live Set'", folder);
    const Finished run =
        runToEnd({.arguments = {"-l", "set.tar"}, .folder = folder, .beforeStart = &refuseLocks});
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output, "1.wav\n2.wav\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

TEST_F(VelmoraScan, WorksWithoutThreads) {
    shell("tar -cf set.tar 'Live Set'", folder);
    const Finished run = runToEnd({.arguments = {"-l", "-z", "Mix.zip", "set.tar", "Live Set"},
                                   .folder = folder,
                                   .beforeStart = &refuseThreads});
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output, "1.wav\n2.wav\n1.wav\n2.wav\n");
    EXPECT_EQ(run.status, 0);
    shell("unzip -tq Mix.zip >&2", folder);
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

TEST_F(VelmoraScan, NamesFoldersThatItCannotListAnywhereInTheTree) {
    write(folder / "Live Set" / "a" / "shut" / "lost.wav");
    fs::permissions(folder / "Live Set" / "a" / "shut", fs::perms::none);
    asOrdinaryUser([&] {
        const Finished run = scan({"Live Set"});
        EXPECT_EQ(run.errors,
                  "velmora-scan: cannot read '" + pathOf("Live Set/a/shut") + "': Permission denied\n");
        EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
        EXPECT_EQ(run.status, 1);
    });
    fs::permissions(folder / "Live Set" / "a" / "shut", fs::perms::owner_all);
}

TEST_F(VelmoraScan, NamesTheFolderWhosePathIsTooLong) {
    shell("python3 -c 'import os\nfor _ in range(30): os.mkdir(\"d\" * 200); os.chdir(\"d\" * 200)'",
          folder / "Live Set");
    const Finished run = scan({"Live Set"});
    EXPECT_THAT(run.errors, StartsWith("velmora-scan: cannot read '" + pathOf("Live Set/ddd")));
    EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(VelmoraScan, SendsNoControlSequenceToATerminal) {
    const std::string name = "\x1B[2J\xC2\x9B.wav";
    fs::rename(folder / "Live Set" / "1.wav", folder / name);
    const std::string shown = onTerminal(
        [&] { ::execl(VELMORA_SCAN, "velmora-scan", "-q", "--list", (folder / name).c_str(), nullptr); });
    EXPECT_EQ(shown, "\\x1B[2J\\xC2\\x9B.wav\r\n");
    EXPECT_EQ(scan({"--list", name}).output, name + "\n") << "a file gets the name as it is";
}

TEST_F(VelmoraScan, TakesPathsFromStandardInput) {
    using namespace std::string_literals;
    const fs::path list = write(folder / "list", "Live Set/2.wav\0Live Set/1.wav"s);
    const Finished run = runToEnd({.arguments = {"-l", "--files0-from=-"}, .folder = folder, .input = list});
    EXPECT_EQ(run.output, "1.wav\n2.wav\n");
    EXPECT_EQ(run.status, 0);
}

TEST_F(VelmoraScan, TakesPathsFromAPipeAfterThoseOfTheCommandLine) {
    const std::string command =
        shellWord(VELMORA_SCAN) + " -f -0 <(find 'Live Set' -name 1.wav -print0) " + "'Live Set/2.wav'";
    EXPECT_EQ(shell("bash -c " + shellWord(command), folder),
              "1.000\t" + first.native() + "\n1.000\t" + second.native() + "\n");
}

TEST_F(VelmoraScan, EndsWith3WhenTheListIsEmpty) {
    const Finished run = scan({"-0", "-"});
    EXPECT_EQ(run.output, nothing + "\n");
    EXPECT_EQ(run.status, 3);
}

TEST_F(VelmoraScan, EndsWith2WhenTheListCannotBeRead) {
    const Finished run = scan({"-0", "missing", "Live Set"});
    EXPECT_EQ(run.errors, "velmora-scan: cannot read the list 'missing': No such file or directory\n");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 2);
}

TEST_F(VelmoraScan, EndsWith2WithoutAPath) {
    const Finished run = scan({});
    EXPECT_EQ(run.errors, "velmora-scan: no path given\nvelmora-scan: 'velmora-scan --help' tells more\n");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.status, 2);
}

TEST_F(VelmoraScan, EndsWith2AtAnUnknownOption) {
    const Finished run = scan({"--frobnicate", "Live Set"});
    EXPECT_THAT(run.errors, StartsWith("velmora-scan: unknown option '--frobnicate'\n"));
    EXPECT_EQ(run.status, 2);
}

TEST_F(VelmoraScan, WritesVersionAndHelpToStandardOutput) {
    const Finished version = scan({"-V"});
    EXPECT_EQ(version.output, versionText());
    EXPECT_EQ(version.status, 0);
    const Finished help = scan({"-h"});
    EXPECT_EQ(help.output, helpText());
    EXPECT_EQ(help.status, 0);
}

TEST_F(VelmoraScan, TellsWhatItStandsOn) {
    const Finished run = scan({"--version", "--verbose"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, StartsWith(versionText() + "libraries:\n  Qt "));
    for (const char* const line : {"  ICU ", "  libzip ", "  libavformat ", "  libavcodec ", "  libseccomp ",
                                   "wall around tools:\n  read-only mounts: ", "  Landlock: ", "  seccomp: ",
                                   "tools:\n  /usr/bin/tar\n", "  /usr/bin/unzip\n", "/ffprobe\n"}) {
        EXPECT_THAT(run.output, HasSubstr(line));
    }
}

TEST_F(VelmoraScan, TellsWhatTheAbsenceOfItsPrivateProgramsCosts) {
    fs::copy_file(VELMORA_SCAN, folder / "velmora-scan");
    const std::string report = shell("./velmora-scan --version --verbose", folder);
    EXPECT_THAT(report,
                HasSubstr("\n  velmora-libav is not there: what our own readers cannot tell is left to "
                          "ffprobe\nwall around tools:\n  velmora-confine is not there: no archive is "
                          "unpacked, and ffprobe is not asked\n"));
}

TEST_F(VelmoraScan, LabelsADotWithTheFoldersName) {
    const Finished run = runToEnd({.arguments = {"."}, .folder = folder / "Live Set"});
    EXPECT_THAT(run.output, HasSubstr(" — LIVE SET\n"));
}

TEST_F(VelmoraScan, SaysNothingMoreInALocaleThatIsNotUtf8) {
    const Finished run =
        runToEnd({.arguments = {"-f", "Live Set/1.wav"}, .folder = folder, .environment = {{"LC_ALL", "C"}}});
    EXPECT_EQ(run.output, "1.000\t" + first.native() + "\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(VelmoraScan, ListsNamesAsTheBytesTheyAre) {
    fs::rename(first, folder / "S\xFC\xDF\n.wav");
    const Finished run = scan({"-f", "S\xFC\xDF\n.wav"});
    EXPECT_EQ(run.output, "1.000\t" + pathOf("S\xFC\xDF\\n.wav") + "\n");
    EXPECT_EQ(run.status, 0);
}

TEST_F(VelmoraScan, LeavesNothingInTheTemporaryDirectory) {
    shell("zip -qr set.zip 'Live Set' && tar -czf set.tgz set.zip", folder);
    const Finished run = scan({"-l", "-z", "out.zip", "set.tgz"});
    EXPECT_EQ(run.output, "1.wav\n2.wav\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(privateDirectories(), IsEmpty());
    EXPECT_THAT(temporaryItems(), IsEmpty());
}

TEST_F(VelmoraScan, SaysWhyItCannotUnpackWhereThereIsNoTemporaryDirectory) {
    shell("tar -cf 'Live Set/more.tar' 'Live Set/1.wav'", folder);
    const std::string reason =
        "cannot make a directory in '" + pathOf("missing") + "': No such file or directory\n";
    const Launch::Variables missing = {{"TMPDIR", folder / "missing"}};
    const Finished run = runToEnd({.arguments = {"Live Set"}, .folder = folder, .environment = missing});
    EXPECT_EQ(run.errors, "velmora-scan: " + reason + "velmora-scan: cannot unpack '" +
                              pathOf("Live Set/more.tar") + "': no directory to unpack into\n");
    EXPECT_EQ(run.output, "TOTAL RUNTIME  00:00:02   (2 sec)\n2 audio files — LIVE SET\n");
    EXPECT_EQ(run.status, 1);

    const Finished zip = runToEnd(
        {.arguments = {"-z", "Mix.zip", "Live Set/1.wav"}, .folder = folder, .environment = missing});
    EXPECT_EQ(zip.errors, "velmora-scan: cannot write the zip archive: " + reason);
    EXPECT_EQ(zip.status, 4);
}

} // namespace
} // namespace velmora::test
