#include "system/UnicodeCase.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace velmora {

namespace {

TEST(UnicodeCase, MapsLettersOfEveryScript) {
    EXPECT_EQ(lowerCased("TRACK 01.WAV"), "track 01.wav");
    EXPECT_EQ(upperCased("track 01.wav"), "TRACK 01.WAV");
    EXPECT_EQ(lowerCased("ÄÖÜ ΑΒΓ ДЖ"), "äöü αβγ дж");
    EXPECT_EQ(upperCased("äöü αβγ дж"), "ÄÖÜ ΑΒΓ ДЖ");
    EXPECT_EQ(upperCased("straße"), "STRASSE");
    EXPECT_EQ(lowerCased("ΟΔΟΣ"), "οδος"); // a sigma at the end of a word
    EXPECT_EQ(lowerCased(""), "");
}

TEST(UnicodeCase, KeepsBytesThatAreNotUtf8) {
    EXPECT_EQ(upperCased("caf\xE9 \xC3\xA9"), "CAF\xE9 \xC3\x89");
    EXPECT_EQ(lowerCased("\xFF\xC3"
                         "A\xE2\x82"),
              "\xFF\xC3"
              "a\xE2\x82");                                  // cut-off sequences
    EXPECT_EQ(lowerCased("\xED\xA0\x80X"), "\xED\xA0\x80x"); // a surrogate
    EXPECT_NE(lowerCased("\xE9"), lowerCased("\xE8"));
}

TEST(UnicodeCase, KeepsComposedAndDecomposedNamesApart) {
    const std::string composed = "\xC3\x89";    // É
    const std::string decomposed = "E\xCC\x81"; // E and a combining acute
    EXPECT_EQ(lowerCased(composed), "\xC3\xA9");
    EXPECT_EQ(lowerCased(decomposed), "e\xCC\x81");
}

TEST(UnicodeCase, IsTheSameInATurkishLocale) {
    ::setenv("LC_ALL", "tr_TR.UTF-8", 1);
    std::setlocale(LC_ALL, "");
    EXPECT_EQ(lowerCased("I.AIFF"), "i.aiff");
    EXPECT_EQ(upperCased("i.aiff é"), "I.AIFF É");
}

} // namespace

} // namespace velmora
