#include "cli/Options.h"

#include "tests/support/NamedRow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using Arguments = std::vector<std::string>;

struct AcceptedCase : test::NamedRow {
    Arguments arguments;
    Options expected;
};

class AcceptedCommandLine : public testing::TestWithParam<AcceptedCase> {};

TEST_P(AcceptedCommandLine, GivesOptions) {
    const AcceptedCase& row = GetParam();
    EXPECT_EQ(parseCommandLine(row.arguments), CommandLine(row.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AcceptedCommandLine,
    testing::Values(
        AcceptedCase{"PathsAlone", {"b", "a"}, {.paths = {"b", "a"}}},
        AcceptedCase{"ShortList", {"-l", "a"}, {.output = Output::list, .paths = {"a"}}},
        AcceptedCase{"LongList", {"--list", "a"}, {.output = Output::list, .paths = {"a"}}},
        AcceptedCase{"ShortFiles", {"-f", "a"}, {.output = Output::files, .paths = {"a"}}},
        AcceptedCase{"LongFiles", {"--files", "a"}, {.output = Output::files, .paths = {"a"}}},
        AcceptedCase{"ShortJson", {"-j", "a"}, {.output = Output::json, .paths = {"a"}}},
        AcceptedCase{"LongJson", {"--json", "a"}, {.output = Output::json, .paths = {"a"}}},
        AcceptedCase{"Folders", {"--folders", "a"}, {.output = Output::folders, .paths = {"a"}}},
        AcceptedCase{
            "FoldersOfADepth", {"--folders=0", "a"}, {.output = Output::folders, .depth = 0, .paths = {"a"}}},
        AcceptedCase{
            "TheWordAfterFoldersIsAPath", {"--folders", "2"}, {.output = Output::folders, .paths = {"2"}}},
        AcceptedCase{"Csv", {"--csv", "a"}, {.output = Output::csv, .paths = {"a"}}},
        AcceptedCase{"Speed", {"--speed", "1.25", "a"}, {.speed = 1.25, .paths = {"a"}}},
        AcceptedCase{"LowestSpeed", {"--speed=0.1", "a"}, {.speed = 0.1, .paths = {"a"}}},
        AcceptedCase{"HighestSpeed", {"--speed=1e1", "a"}, {.speed = 10, .paths = {"a"}}},
        AcceptedCase{"SpeedOfAnyOutput",
                     {"--csv", "--speed=2", "a"},
                     {.output = Output::csv, .speed = 2, .paths = {"a"}}},
        AcceptedCase{"ShortQuiet", {"-q", "a"}, {.quiet = true, .paths = {"a"}}},
        AcceptedCase{"LongQuiet", {"--quiet", "a"}, {.quiet = true, .paths = {"a"}}},
        AcceptedCase{"ShortZip", {"-z", "o.zip", "a"}, {.paths = {"a"}, .zip = "o.zip"}},
        AcceptedCase{"ShortZipInOneWord", {"-zo.zip", "a"}, {.paths = {"a"}, .zip = "o.zip"}},
        AcceptedCase{"LongZip", {"--zip", "o.zip", "a"}, {.paths = {"a"}, .zip = "o.zip"}},
        AcceptedCase{"LongZipWithEqualsSign", {"--zip=o=1.zip", "a"}, {.paths = {"a"}, .zip = "o=1.zip"}},
        AcceptedCase{"TheLastZipCounts", {"-z", "1", "-z", "2", "a"}, {.paths = {"a"}, .zip = "2"}},
        AcceptedCase{"CombinedShortOptions",
                     {"-qfz", "o", "a"},
                     {.output = Output::files, .quiet = true, .paths = {"a"}, .zip = "o"}},
        AcceptedCase{
            "ACheckAlone", {"--check", "a"}, {.output = Output::findings, .check = true, .paths = {"a"}}},
        AcceptedCase{
            "ACheckInJson", {"--check", "-j", "a"}, {.output = Output::json, .check = true, .paths = {"a"}}},
        AcceptedCase{"OptionsAfterPaths", {"a", "-q", "b"}, {.quiet = true, .paths = {"a", "b"}}},
        AcceptedCase{
            "NoOptionAfterTwoDashes", {"-q", "--", "-l", "--"}, {.quiet = true, .paths = {"-l", "--"}}},
        AcceptedCase{"ADashIsAPath", {"-"}, {.paths = {"-"}}},
        AcceptedCase{"AListFromStandardInput", {"-0", "-"}, {.pathLists = {"-"}}},
        AcceptedCase{"SeveralListsAndAPath",
                     {"--files0-from=x", "a", "-0y"},
                     {.paths = {"a"}, .pathLists = {"x", "y"}}},
        AcceptedCase{"AnUnmistakableBeginning", {"--qui", "a"}, {.quiet = true, .paths = {"a"}}},
        AcceptedCase{"TheSameOutputTwice", {"-jj", "--json", "a"}, {.output = Output::json, .paths = {"a"}}},
        AcceptedCase{"APathThatIsNotUtf8", {"\xFF"}, {.paths = {"\xFF"}}}),
    &test::rowName<AcceptedCase>);

struct RefusedCase : test::NamedRow {
    Arguments arguments;
    std::string message;
};

class RefusedCommandLine : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedCommandLine, SaysWhy) {
    const RefusedCase& row = GetParam();
    EXPECT_EQ(parseCommandLine(row.arguments), CommandLine(UsageError{row.message}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RefusedCommandLine,
    testing::Values(
        RefusedCase{"Nothing", {}, "no path given"}, RefusedCase{"NoPath", {"-q", "--"}, "no path given"},
        RefusedCase{
            "ACheckWithList", {"--check", "-l", "a"}, "of the other outputs only --json goes with --check"},
        RefusedCase{
            "ACheckWithFiles", {"-f", "--check", "a"}, "of the other outputs only --json goes with --check"},
        RefusedCase{"UnknownShort", {"-x", "a"}, "unknown option '-x'"},
        RefusedCase{"UnknownAmongKnown", {"-qxf", "a"}, "unknown option '-x'"},
        RefusedCase{"UnknownLong", {"a", "--nope"}, "unknown option '--nope'"},
        RefusedCase{"UnknownThatWouldActOnATerminal", {"--\x1B[2J", "a"}, "unknown option '--\\x1B[2J'"},
        RefusedCase{"UnknownByteAboveAscii", {"-\xE9", "a"}, "unknown option '-\\xE9'"},
        RefusedCase{"AmbiguousBeginning", {"--file", "a"}, "unknown option '--file'"},
        RefusedCase{"ValueNotWanted", {"--quiet=yes", "a"}, "option '-q' takes no value"},
        RefusedCase{"ValueNotWantedWithoutALetter", {"--csv=yes", "a"}, "option '--csv' takes no value"},
        RefusedCase{"ValueMissingWithoutALetter", {"a", "--speed"}, "option '--speed' needs a value"},
        RefusedCase{
            "DepthThatIsNone", {"--folders=x", "a"}, "--folders takes a number of levels from 0 on, not 'x'"},
        RefusedCase{
            "DepthBelow0", {"--folders=-1", "a"}, "--folders takes a number of levels from 0 on, not '-1'"},
        RefusedCase{
            "DepthWithMore", {"--folders=1 ", "a"}, "--folders takes a number of levels from 0 on, not '1 '"},
        RefusedCase{"DepthBeyondCounting",
                    {"--folders=9999999999", "a"},
                    "--folders takes a number of levels from 0 on, not '9999999999'"},
        RefusedCase{
            "EmptyDepth", {"--folders=", "a"}, "--folders takes a number of levels from 0 on, not ''"},
        RefusedCase{
            "SpeedThatIsNone", {"--speed", "fast", "a"}, "--speed takes a number from 0.1 to 10, not 'fast'"},
        RefusedCase{"SpeedWithACrossAfterIt",
                    {"--speed", "2x", "a"},
                    "--speed takes a number from 0.1 to 10, not '2x'"},
        RefusedCase{"SpeedOf0", {"--speed", "0", "a"}, "--speed takes a number from 0.1 to 10, not '0'"},
        RefusedCase{
            "SpeedTooHigh", {"--speed", "10.1", "a"}, "--speed takes a number from 0.1 to 10, not '10.1'"},
        RefusedCase{"SpeedThatIsNoNumber",
                    {"--speed", "nan", "a"},
                    "--speed takes a number from 0.1 to 10, not 'nan'"},
        RefusedCase{"SpeedOfACheck",
                    {"--check", "--json", "--speed=2", "a"},
                    "--speed does not go with --check: what is checked is what files state"},
        RefusedCase{"FoldersOfACheck",
                    {"--check", "--folders", "a"},
                    "of the other outputs only --json goes with --check"},
        RefusedCase{"FoldersAndCsv",
                    {"--folders", "--csv", "a"},
                    "only one of --list, --files, --folders, --csv and --json can be given"},
        RefusedCase{"ShortValueMissing", {"a", "-z"}, "option '-z' needs a value"},
        RefusedCase{"LongValueMissing", {"a", "--zip"}, "option '-z' needs a value"},
        RefusedCase{"TwoOutputs",
                    {"-l", "-f", "a"},
                    "only one of --list, --files, --folders, --csv and --json can be given"},
        RefusedCase{"TwoOutputsInOneWord",
                    {"-jl", "a"},
                    "only one of --list, --files, --folders, --csv and --json can be given"}),
    &test::rowName<RefusedCase>);

TEST(CommandLine, AsksForTheVersionInEitherForm) {
    EXPECT_EQ(parseCommandLine({"-V"}), CommandLine(TextWanted{versionText()}));
    EXPECT_EQ(parseCommandLine({"--version", "--nope"}), CommandLine(TextWanted{versionText()}));
}

TEST(CommandLine, AsksForTheInstallationInEitherOrder) {
    EXPECT_EQ(parseCommandLine({"--version", "--verbose"}), CommandLine(InstallationWanted{}));
    EXPECT_EQ(parseCommandLine({"--verbose", "-V"}), CommandLine(InstallationWanted{}));
    EXPECT_EQ(parseCommandLine({"-V", "--", "--verbose"}), CommandLine(TextWanted{versionText()}));
    EXPECT_EQ(parseCommandLine({"--verbose", "a"}),
              CommandLine(UsageError{"--verbose goes with --version alone"}));
    EXPECT_EQ(parseCommandLine({"--", "--verbose"}), CommandLine(Options{.paths = {"--verbose"}}));
    EXPECT_EQ(parseCommandLine({"-z", "--verbose", "a"}),
              CommandLine(Options{.paths = {"a"}, .zip = "--verbose"}))
        << "the value of an option";
}

TEST(CommandLine, AsksForHelpInEitherForm) {
    EXPECT_EQ(parseCommandLine({"-h"}), CommandLine(TextWanted{helpText()}));
    EXPECT_EQ(parseCommandLine({"a", "--help"}), CommandLine(TextWanted{helpText()}));
}

TEST(CommandLine, IsReadAfreshEachTime) {
    EXPECT_EQ(parseCommandLine({"-qx", "a"}), CommandLine(UsageError{"unknown option '-x'"}));
    EXPECT_EQ(parseCommandLine({"-q", "a"}), CommandLine(Options{.quiet = true, .paths = {"a"}}));
}

TEST(CommandLine, NamesProgramAndVersion) {
    EXPECT_THAT(versionText(), MatchesRegex("velmora-scan [0-9][0-9.]*\n"));
}

TEST(CommandLine, HelpNamesEveryOptionInBothForms) {
    EXPECT_THAT(helpText(),
                AllOf(HasSubstr("-l, --list "), HasSubstr("-f, --files "), HasSubstr("-j, --json "),
                      HasSubstr("--folders[=DEPTH] "), HasSubstr("--csv "), HasSubstr("--speed X "),
                      HasSubstr("-0, --files0-from FILE "), HasSubstr("-z, --zip FILE "),
                      HasSubstr("-q, --quiet "), HasSubstr("-V, --version "), HasSubstr("--verbose"),
                      HasSubstr("-h, --help "), EndsWith("\n")));
}

} // namespace
} // namespace velmora
