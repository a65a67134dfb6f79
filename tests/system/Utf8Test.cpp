#include "system/Utf8.h"

#include "tests/support/NamedRow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::test {
namespace {

struct TakenText : NamedRow {
    std::string_view text;
    std::vector<std::optional<char32_t>> characters; ///< absent: one invalid byte
};

class Utf8 : public testing::TestWithParam<TakenText> {};

TEST_P(Utf8, IsTakenApartWithoutLosingAByte) {
    std::string_view rest = GetParam().text;
    std::string joined;
    std::vector<std::optional<char32_t>> characters;
    while (!rest.empty()) {
        const Utf8Part part = takeUtf8(rest);
        joined += part.bytes;
        characters.push_back(part.character);
        EXPECT_TRUE(part.character || part.bytes.size() == 1);
    }
    EXPECT_EQ(characters, GetParam().characters);
    EXPECT_EQ(joined, GetParam().text);
}

constexpr auto invalid = std::nullopt;

INSTANTIATE_TEST_SUITE_P(
    Rows, Utf8,
    testing::Values(
        TakenText{"Nothing", "", {}}, TakenText{"Ascii", "a/", {U'a', U'/'}},
        TakenText{"Nul", std::string_view("a\0", 2), {U'a', U'\0'}},
        TakenText{"EveryLength", "a\u00e9\u20ac\U0001D11E", {U'a', U'\u00e9', U'\u20ac', U'\U0001D11E'}},
        TakenText{"Latin1", "\xE9t\xE9", {invalid, U't', invalid}},
        TakenText{"CutOff", "\xE2\x82", {invalid, invalid}},
        TakenText{"CutOffBeforeACharacter", "\xE2\x82x", {invalid, invalid, U'x'}},
        TakenText{"Overlong", "\xC0\xAF", {invalid, invalid}},
        TakenText{"Surrogate", "\xED\xA0\x80", {invalid, invalid, invalid}},
        TakenText{"TooLarge", "\xF4\x90\x80\x80", {invalid, invalid, invalid, invalid}},
        TakenText{"LastCharacter", "\xF4\x8F\xBF\xBF", {U'\U0010FFFF'}}),
    &rowName<TakenText>);

} // namespace
} // namespace velmora::test
