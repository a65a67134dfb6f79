// What the tools say, in the words that each of them was seen to use. That the real ones say it is shown by
// ArchiveExtractionTest.cpp.

#include "gather/ToolVerdict.h"

#include "tests/support/NamedRow.h"

#include <gtest/gtest.h>

#include <csignal>

namespace velmora {

namespace {

using Collector::ToolEnd;
using Collector::verdictOf;
using Collector::weightier;

struct VerdictCase : test::NamedRow {
    std::string tool;
    std::optional<int> status;
    std::string errors;
    Reason expected;
};

class ToolVerdict : public testing::TestWithParam<VerdictCase> {};

TEST_P(ToolVerdict, IsWhatTheToolMeans) {
    const VerdictCase& row = GetParam();
    EXPECT_EQ(verdictOf("/usr/bin/" + row.tool, {.status = row.status, .errors = row.errors}), row.expected);
}

constexpr const char* noTar = "tar: This does not look like a tar archive\ntar: Skipping to next header\n";

INSTANTIATE_TEST_SUITE_P(
    Rows, ToolVerdict,
    testing::Values(
        VerdictCase{"MissingTool", "ditto", std::nullopt, "", Reason::noTool},
        VerdictCase{"NotStarted", "tar", 126, "velmora-confine: cannot", Reason::toolFailed},
        VerdictCase{"KilledTool", "tar", 128 + SIGKILL, "", Reason::toolFailed},
        VerdictCase{"ProcessorTimeUsedUp", "unzip", 128 + SIGXCPU, "", Reason::toolFailed},
        VerdictCase{"FileTooLarge", "tar", 128 + SIGXFSZ, "", Reason::noRoom},
        VerdictCase{"TarDiskFull", "tar", 2, "tar: a.wav: Cannot write: No space left on device\n",
                    Reason::noRoom},
        VerdictCase{"TarQuota", "tar", 2, "tar: a.wav: Cannot open: Disk quota exceeded\n", Reason::noRoom},
        VerdictCase{"UnzipDiskFull", "unzip", 50, "", Reason::noRoom},
        VerdictCase{"TarNotTar", "tar", 2, noTar, Reason::noTool},
        VerdictCase{"TarCutOff", "tar", 2, "tar: Unexpected EOF in archive\n", Reason::damaged},
        VerdictCase{"TarThroughXz", "tar", 2, "xz: (stdin): Compressed data is corrupt\n", Reason::damaged},
        VerdictCase{"UnzipNotZip", "unzip", 9, "  End-of-central-directory signature not found.",
                    Reason::noTool},
        VerdictCase{"UnzipBadSum", "unzip", 2, "a.wav  bad CRC 8c6352cc", Reason::damaged},
        VerdictCase{"UnzipUnknownMethod", "unzip", 81, "", Reason::noTool},
        VerdictCase{"UnzipNoPassword", "unzip", 5, "   skipping: a.wav     unable to get password\n",
                    Reason::encrypted},
        VerdictCase{"UnzipWrongPassword", "unzip", 82, "", Reason::encrypted},
        VerdictCase{"GunzipNotGzip", "gunzip", 1, "gzip: a.gz: not in gzip format\n", Reason::noTool},
        VerdictCase{"GunzipCutOff", "gunzip", 1, "gzip: a.gz: unexpected end of file\n", Reason::damaged},
        VerdictCase{"GunzipOfNothing", "gunzip", 0, "", Reason::noTool},
        VerdictCase{"Bunzip2NotBzip2", "bunzip2", 2, "bunzip2: a.bz2 is not a bzip2 file.\n", Reason::noTool},
        VerdictCase{"Bunzip2CutOff", "bunzip2", 2, "bunzip2: Compressed file ends unexpectedly;\n",
                    Reason::damaged},
        VerdictCase{"BsdtarNoArchive", "bsdtar", 1,
                    "bsdtar: Error opening archive: Unrecognized archive format\n", Reason::noTool},
        VerdictCase{"BsdtarUnknownMethod", "bsdtar", 1,
                    "a.wav: Unsupported ZIP compression method (98: ppmd)", Reason::noTool},
        VerdictCase{"BsdtarPassphrase", "bsdtar", 1, "Enter passphrase:bsdtar: Couldn't read passphrase",
                    Reason::encrypted},
        VerdictCase{"BsdtarSecretContent", "bsdtar", 1,
                    "a.wav: The file content is encrypted, but currently not supported", Reason::encrypted},
        VerdictCase{"BsdtarSecretRar", "bsdtar", 1, "bsdtar: RAR encryption support unavailable.",
                    Reason::encrypted},
        VerdictCase{"BsdtarBadSum", "bsdtar", 1, "a.wav: ZIP bad CRC: 0x8c6352cc should be 0x91ee6cec",
                    Reason::damaged},
        VerdictCase{"BsdtarRarNoise", "bsdtar", 1, "a.wav: Invalid PPMd sequence", Reason::toolFailed},
        VerdictCase{"BsdtarCannotWrite", "bsdtar", 1, "a.wav: Can't create 'a.wav': File name too long",
                    Reason::toolFailed}),
    &test::rowName<VerdictCase>);

TEST(ToolVerdicts, TheOneThatSaysMoreHolds) {
    EXPECT_EQ(weightier(Reason::noTool, Reason::damaged), Reason::damaged);
    EXPECT_EQ(weightier(Reason::damaged, Reason::noTool), Reason::damaged);
    EXPECT_EQ(weightier(Reason::toolFailed, Reason::noTool), Reason::toolFailed);
    EXPECT_EQ(weightier(Reason::damaged, Reason::toolFailed), Reason::damaged);
    EXPECT_EQ(weightier(Reason::damaged, Reason::encrypted), Reason::encrypted);
    EXPECT_EQ(weightier(Reason::noRoom, Reason::encrypted), Reason::noRoom);
    EXPECT_EQ(weightier(Reason::noTool, Reason::noTool), Reason::noTool);
}

} // namespace

} // namespace velmora
