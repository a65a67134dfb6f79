// The zip export of the terminal program.

#include "tests/cli/ScanProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace velmora::test {
namespace {

using namespace std::string_literals;

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class ZipOption : public testing::Test {
protected:
    Finished scan(std::vector<std::string> arguments) const {
        return runToEnd({.arguments = std::move(arguments), .folder = folder});
    }

    const fs::path folder = freshFolder();
    const fs::path track = writeWav(folder / "Set" / "Disc 1" / "1.wav", oneSecond);
    const std::string total = "TOTAL RUNTIME  00:00:01   (1 sec)\n1 audio file — SET\n";
};

TEST_F(ZipOption, WritesTheZipBesideTheReport) {
    const Finished run = scan({"--zip", "Mix.zip", "Set"});
    EXPECT_EQ(run.output, total);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(shell("unzip -p Mix.zip 'Mix/Disc 1/1.wav'", folder) == read(track));
}

TEST_F(ZipOption, ReplacesAnOldFile) {
    write(folder / "Mix.zip", "old");
    EXPECT_EQ(scan({"--zip", "Mix.zip", "Set"}).status, 0);
    shell("unzip -tq Mix.zip >&2", folder);
}

TEST_F(ZipOption, EndsWith4WhenTheZipCannotBeWritten) {
    const Finished run = scan({"-z", "missing/Mix.zip", "Set"});
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the zip archive: Mix.zip: No such file or directory\n");
    EXPECT_EQ(run.output, total) << "the report is written all the same";
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(privateDirectories(), IsEmpty());
}

TEST_F(ZipOption, NamesTheZipSoThatATerminalIsNotMessedUp) {
    const Finished run = scan({"-z", "missing/\x1B[2J.zip", "Set"});
    EXPECT_EQ(run.errors,
              "velmora-scan: cannot write the zip archive: \\x1B[2J.zip: No such file or directory\n");
}

TEST_F(ZipOption, DoesNotReplaceAFolder) {
    fs::create_directory(folder / "Mix.zip");
    const Finished run = scan({"-z", "Mix.zip", "Set"});
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the zip archive: Mix.zip: Is a directory\n");
    EXPECT_EQ(run.status, 4);
    EXPECT_TRUE(fs::is_directory(folder / "Mix.zip"));
}

/// A link stands for the device: a test that fails would replace the link and not the device of the machine.
TEST_F(ZipOption, ReplacesNeitherADeviceNorAFifo) {
    shell("ln -s /dev/null device.zip && mkfifo fifo.zip", folder);
    for (const char* destination : {"device.zip", "fifo.zip"}) {
        const Finished run = scan({"-z", destination, "Set"});
        EXPECT_EQ(run.errors, "velmora-scan: cannot write the zip archive: "s + destination +
                                  ": It is not a regular file.\n");
        EXPECT_EQ(run.status, 4);
    }
    EXPECT_TRUE(fs::is_symlink(folder / "device.zip"));
    EXPECT_TRUE(fs::is_fifo(folder / "fifo.zip"));
}

/// What was scanned, under the same and other names.
TEST_F(ZipOption, ReplacesNoSource) {
    shell("cp -r Set Packed && tar -cf packed.tar Packed && echo text > text.zip && echo text > notes &&"
          "ln -s Set/*/1.wav link && ln Set/*/1.wav hard",
          folder);
    const auto sums = [&] { return shell("find . -type f -print0 | sort -z | xargs -0 sha256sum", folder); };
    const std::string before = sums();
    for (const char* destination : {"packed.tar", "text.zip", "notes", "link", "hard"}) {
        const Finished run = scan({"-z", destination, "Set", "packed.tar", "text.zip", "notes"});
        EXPECT_THAT(run.errors, EndsWith("cannot write the zip archive: "s + destination +
                                         " would replace a source of this scan\n"));
        EXPECT_EQ(run.status, 4);
    }
    EXPECT_EQ(sums(), before);
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
}

TEST_F(ZipOption, IsNotNamedAsAudio) {
    for (const char* destination : {"new.wav", "Set/Disc 1/1.wav", "NEW.Mp3"}) {
        const Finished run = scan({"-z", destination, "Set"});
        EXPECT_THAT(run.errors, EndsWith(" has the name of an audio file\n"));
        EXPECT_EQ(run.output, total);
        EXPECT_EQ(run.status, 4);
    }
    EXPECT_THAT(namesIn(folder), ElementsAre("Set"));
}

TEST_F(ZipOption, SaysThatTheArchiveIsLargerThanAllowed) {
    const Finished run =
        runToEnd({.arguments = {"-z", "Mix.zip", "Set"}, .folder = folder, .beforeStart = [] {
                      const rlimit limits = {1000, 1000};
                      ::setrlimit(RLIMIT_FSIZE, &limits);
                  }});
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the zip archive: 1.wav: File too large\n");
    EXPECT_EQ(run.status, 4);
}

TEST_F(ZipOption, EndsWith4RatherThan1) {
    write(folder / "Set" / "broken.mp3", "no audio");
    const Finished run = scan({"-z", "missing/Mix.zip", "Set", "missing.wav"});
    EXPECT_THAT(run.errors, HasSubstr("broken.mp3': no audio frames\n"));
    EXPECT_THAT(run.errors, HasSubstr("'missing.wav'"));
    EXPECT_EQ(run.status, 4);
}

TEST_F(ZipOption, WritesNoZipOfNothing) {
    const fs::path broken = write(folder / "broken.mp3", "no audio");
    const Finished run = scan({"-z", "Mix.zip", "broken.mp3"});
    EXPECT_EQ(run.errors,
              "velmora-scan: cannot time '" + broken.native() +
                  "': no audio frames\nvelmora-scan: cannot write the zip archive: nothing was measured\n");
    EXPECT_EQ(run.status, 3);
    EXPECT_FALSE(fs::exists(folder / "Mix.zip"));
}

} // namespace
} // namespace velmora::test
