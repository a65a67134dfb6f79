#include "system/Names.h"

#include "tests/support/NamedRow.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct NameCase : test::NamedRow {
    std::string text;
    std::string field;
    std::string quoted;
};

class Name : public testing::TestWithParam<NameCase> {};

TEST_P(Name, IsWrittenAsAField) {
    EXPECT_EQ(fieldName(GetParam().text), GetParam().field);
}

TEST_P(Name, IsQuotedForAMessage) {
    EXPECT_EQ(quotedName(GetParam().text), GetParam().quoted);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Name,
    testing::Values(NameCase{"Empty", "", "", "''"},                                            //
                    NameCase{"Plain", "/a/b c.wav", "/a/b c.wav", "'/a/b c.wav'"},              //
                    NameCase{"LineFeed", "a\nb", "a\\nb", "'a\\x0Ab'"},                         //
                    NameCase{"Tab", "a\tb", "a\\tb", "'a\\x09b'"},                              //
                    NameCase{"Backslash", "a\\nb", "a\\\\nb", "'a\\\\nb'"},                     //
                    NameCase{"Quote", "it's", "it's", "'it's'"},                                //
                    NameCase{"EscapeSequence", "\x1B[31mred", "\x1B[31mred", "'\\x1B[31mred'"}, //
                    NameCase{"Delete", "a\x7F", "a\x7F", "'a\\x7F'"},                           //
                    NameCase{"Umlaut", "Zaubergarten – Süß", "Zaubergarten – Süß", "'Zaubergarten – Süß'"},
                    NameCase{"Emoji", "👨‍👩‍👧.mp3", "👨‍👩‍👧.mp3",
                             "'👨‍👩‍👧.mp3'"},
                    NameCase{"Latin1", "S\xFC\xDF", "S\xFC\xDF", "'S\\xFC\\xDF'"},
                    NameCase{"CutOffUtf8", "a\xE2\x82", "a\xE2\x82", "'a\\xE2\\x82'"},
                    NameCase{"ControlInTwoBytes", "a\xC2\x9Bm", "a\xC2\x9Bm", "'a\\xC2\\x9Bm'"},
                    NameCase{"LineSeparator", "a\u2028b", "a\u2028b", "'a\\xE2\\x80\\xA8b'"}),
    &test::rowName<NameCase>);

TEST(TerminalLines, KeepLinesFieldsAndBackslashes) {
    EXPECT_EQ(terminalLines("1.000\ta\\tb\n\x1B[2J\xFF\u2028\u00E9\n"),
              "1.000\ta\\tb\n\\x1B[2J\\xFF\\xE2\\x80\\xA8\u00E9\n");
}

TEST(QuotedName, WritesTheMarksThatTurnTextRound) {
    const std::string rightToLeftOverride = {'\xE2', '\x80', '\xAE'};
    EXPECT_EQ(quotedName("a" + rightToLeftOverride + "vaw.exe"), "'a\\xE2\\x80\\xAEvaw.exe'");
}

TEST(QuotedName, WritesEveryByteThatIsNoText) {
    for (int byte = 1; byte < 0x20; ++byte) {
        const std::string quoted = quotedName(std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(quoted.size(), std::string_view("'\\x00'").size()) << byte;
        EXPECT_EQ(std::stoi(quoted.substr(3, 2), nullptr, 16), byte);
    }
}

} // namespace
} // namespace velmora
