// The tables of the built program, with real files under names that would spoil a careless one, read back by
// another program.

#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace velmora::test {
namespace {

/// What `velmora-scan` writes with `arguments`, after `more` has read it, if there is any.
std::string scanned(const std::string& arguments, const fs::path& folder, const std::string& more = "") {
    return shell(shellWord(VELMORA_SCAN) + " -q " + arguments + more, folder);
}

class Tables : public testing::Test {
protected:
    void SetUp() override {
        for (const char* const name : {"a, b \"c\".wav", "=1+1\r\n.wav", "S\xFC\xDF.wav"}) {
            writeWav(folder / "M" / name, oneSecond);
        }
        shell("cd M && tar -cf ../in.tar . && cd .. && zip -q M/out.zip in.tar && rm in.tar", folder);
    }

    const fs::path folder = freshFolder();
};

TEST_F(Tables, HoldTheSamePathsAndSecondsAsTheFilesReport) {
    const std::string rows =
        " | python3 -c '\n"
        "import csv, io, os, sys\n"
        "text = io.TextIOWrapper(sys.stdin.buffer, \"utf-8\", \"surrogateescape\", newline=\"\")\n"
        "for row in csv.DictReader(text, strict=True):\n"
        "    name = row[\"path\"].replace(\"\\\\\", \"\\\\\\\\\").replace(\"\\n\", \"\\\\n\")\n"
        "    assert row[\"length\"] == \"00:00:01\" and row[\"format\"] == \"WAV\", row\n"
        "    assert row[\"sample_rate\"] == \"8000\" and row[\"channels\"] == \"1\", row\n"
        "    sys.stdout.buffer.write(os.fsencode(row[\"seconds\"] + \"\\t\" + name + \"\\n\"))'";
    const std::string files = scanned("--files M", folder);
    EXPECT_EQ(std::count(files.begin(), files.end(), '\n'), 6);
    EXPECT_EQ(scanned("--csv M", folder, rows), files);
}

TEST_F(Tables, CountArchivesInArchivesAsFolders) {
    const std::string path = (folder / "M").native();
    EXPECT_EQ(scanned("--folders M", folder), "6.000\t6\t" + path + "\n3.000\t3\t" + path +
                                                  "/out.zip\n3.000\t3\t" + path + "/out.zip/in.tar\n");
    EXPECT_EQ(scanned("--folders=0 --speed 2 M", folder), "3.000\t6\t" + path + "\n");
    EXPECT_EQ(scanned("--folders M/*.wav", folder), "3.000\t3\t" + path + "\n");
}

TEST_F(Tables, ShowALengthDividedInEveryOutput) {
    EXPECT_EQ(scanned("--speed 0.5 M/a*", folder),
              "TOTAL RUNTIME  00:00:02   (2 sec)\n1 audio file — A, B \"C\".WAV\n");
    EXPECT_EQ(scanned("--files --speed 4 M/a*", folder).substr(0, 6), "0.250\t");
    EXPECT_EQ(scanned("--list --speed 4 M/a*", folder), "a, b \"c\".wav\n");
    EXPECT_NE(scanned("--json --speed 4 M/a*", folder).find("\"seconds\": 0.25,"), std::string::npos);
}

} // namespace
} // namespace velmora::test
