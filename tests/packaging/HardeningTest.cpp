// Reads how the installed programs were compiled and linked.

#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace velmora::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

struct Program {
    const char* name;
    const char* path;
    bool isStatic;
};

class Hardening : public testing::TestWithParam<Program> {
protected:
    static std::string readelf(const std::string& options) {
        return shell("readelf -W " + options + " " + shellWord(GetParam().path));
    }
};

TEST_P(Hardening, IsLoadedAnywhereAndReadOnlyOnceItIsBound) {
    const std::string text = readelf("-h -l -d");
    EXPECT_THAT(text, ContainsRegex("Type: +DYN"));
    EXPECT_THAT(text, ContainsRegex("FLAGS_1.*NOW.*PIE"));
    EXPECT_THAT(text, HasSubstr("GNU_RELRO"));
    EXPECT_THAT(text, ContainsRegex("GNU_STACK.* RW "));
    EXPECT_EQ(text.find("INTERP") == std::string::npos, GetParam().isStatic) << text;
}

TEST_P(Hardening, HasNoRunPath) {
    EXPECT_THAT(readelf("-d"), Not(ContainsRegex("RPATH|RUNPATH")));
}

TEST_P(Hardening, NamesNoFolderOfTheMachineThatBuiltIt) {
    const std::string bytes = read(GetParam().path);
    EXPECT_EQ(bytes.find(SOURCE_TREE), std::string::npos);
    EXPECT_EQ(bytes.find(BUILD_TREE), std::string::npos);
}

/// Debug information names the options of every file that was compiled.
TEST_P(Hardening, EveryFileIsCompiledWithItsOptions) {
    std::istringstream files(readelf("--debug-dump=info --dwarf-depth=1"));
    int ours = 0;
    for (std::string line; std::getline(files, line);) {
        if (line.find("DW_AT_producer") == std::string::npos) {
            continue;
        }
        ++ours;
        EXPECT_THAT(line, HasSubstr("-fstack-protector-strong"));
        EXPECT_THAT(line, HasSubstr("-fstack-clash-protection"));
#ifdef __x86_64__
        EXPECT_THAT(line, HasSubstr("-fcf-protection"));
#endif
    }
    EXPECT_GT(ours, 0);
}

/// In the other programs the compiler knows that what the library fills is large enough.
TEST(Fortified, SizesAreCheckedOfWhatTheLibraryFills) {
    for (const char* const program : {VELMORA, VELMORA_LIBAV}) {
        EXPECT_THAT(shell("readelf -W --dyn-syms " + shellWord(program) + " | grep _chk"),
                    ContainsRegex("UND __(mem|str|f?printf|read|vs?n?printf|snprintf)[a-z]*_chk@"))
            << program;
    }
}

INSTANTIATE_TEST_SUITE_P(OfPrograms, Hardening,
                         testing::Values(Program{"velmora", VELMORA, false},
                                         Program{"scan", VELMORA_SCAN, false},
                                         Program{"confine", VELMORA_CONFINE, true},
                                         Program{"libav", VELMORA_LIBAV, false}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace velmora::test
