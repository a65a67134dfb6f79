#include "measure/formats/FormatTable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::test {

namespace {

/// Bytes that begin with `pattern`, where that says "any byte" a zero, and go on for long enough.
std::vector<std::uint8_t> bytesFor(std::string_view pattern) {
    std::vector<std::uint8_t> bytes;
    for (const char letter : pattern) {
        bytes.push_back(letter == '?' ? 0 : static_cast<std::uint8_t>(letter));
    }
    bytes.resize(pattern.size() + 64);
    return bytes;
}

const Format* formatOf(const std::vector<std::uint8_t>& bytes) {
    GuardedReader reader(sourceOf(std::span(bytes)), {});
    return formatAt(reader, 0);
}

} // namespace

TEST(FormatTable, HasNoRowThatAnEarlierOneHides) {
    for (const Format& row : formats()) {
        EXPECT_EQ(formatOf(bytesFor(row.pattern)), &row) << row.name.text() << " " << row.pattern;
    }
}

TEST(FormatTable, RecognisesAFileOfNothingButThePattern) {
    for (const Format& row : formats()) {
        std::vector<std::uint8_t> bytes = bytesFor(row.pattern);
        bytes.resize(row.pattern.size());
        EXPECT_EQ(formatOf(bytes), &row) << row.name.text() << " " << row.pattern;
        bytes.pop_back();
        EXPECT_NE(formatOf(bytes), &row) << row.name.text() << " " << row.pattern;
    }
}

TEST(FormatTable, HasANameAndSomebodyToReadEachFormat) {
    for (const Format& row : formats()) {
        EXPECT_TRUE(row.name.isKnown()) << row.pattern;
        EXPECT_TRUE(row.read != nullptr || !row.demuxer.empty()) << row.name.text();
    }
}

TEST(FormatTable, FindsEveryExtensionOfAHeaderReaderInAnyCase) {
    for (const HeaderFormat& row : headerFormats()) {
        std::string name = "a." + std::string(row.extension);
        EXPECT_EQ(headerFormatOf(name), &row) << name;
        name[2] = static_cast<char>(name[2] - 'a' + 'A');
        EXPECT_EQ(headerFormatOf(name), &row) << name;
    }
    EXPECT_EQ(headerFormatOf("a.wav"), nullptr);
}

} // namespace velmora::test
