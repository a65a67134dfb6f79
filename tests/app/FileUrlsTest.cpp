#include "app/desktop/FileUrls.h"

#include <gtest/gtest.h>

#include <ostream>

namespace velmora::test {
namespace {

struct UrlRow {
    const char* name;
    const char* url;
    const char* path; ///< null: no path of this machine
};

std::ostream& operator<<(std::ostream& out, const UrlRow& row) {
    return out << row.name;
}

class FileUrl : public testing::TestWithParam<UrlRow> {};

TEST_P(FileUrl, IsReadToTheByte) {
    const auto path = pathOfUrl(GetParam().url);
    ASSERT_EQ(path.has_value(), GetParam().path != nullptr);
    if (path) {
        EXPECT_EQ(path->native(), GetParam().path);
    }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(FileUrls, FileUrl, testing::Values(
    UrlRow{"Plain",          "file:///music/a.wav",            "/music/a.wav"},
    UrlRow{"Blanks",         "file:///my%20music/a%20b.wav",   "/my music/a b.wav"},
    UrlRow{"Localhost",      "file://localhost/a.wav",         "/a.wav"},
    UrlRow{"WithoutHost",    "file:/a.wav",                    "/a.wav"},
    UrlRow{"CapitalScheme",  "FILE:///a.wav",                  "/a.wav"},
    UrlRow{"Utf8",           "file:///%C3%A9t%C3%A9.wav",      "/\xC3\xA9t\xC3\xA9.wav"},
    UrlRow{"Latin1",         "file:///%E9t%E9.wav",            "/\xE9t\xE9.wav"},
    UrlRow{"LineFeed",       "file:///a%0Ab.wav",              "/a\nb.wav"},
    UrlRow{"Percent",        "file:///100%25.wav",             "/100%.wav"},
    UrlRow{"HashAndMark",    "file:///a%23b%3Fc.wav",          "/a#b?c.wav"},
    UrlRow{"Plus",           "file:///a+b.wav",                "/a+b.wav"},
    UrlRow{"OtherMachine",   "file://elsewhere/a.wav",         nullptr},
    UrlRow{"OtherScheme",    "https://x.example/a.wav",        nullptr},
    UrlRow{"Nul",            "file:///a%00b.wav",              nullptr},
    UrlRow{"NoPath",         "file://",                        nullptr},
    UrlRow{"Text",           "hello",                          nullptr},
    UrlRow{"Empty",          "",                               nullptr}),
    [](const auto& row) { return row.param.name; });

// clang-format on

TEST(FileUrls, AreTakenFromAListInItsOrder) {
    EXPECT_EQ(pathsOfUriList("# comment\r\nfile:///b.wav\r\nhttps://x.example/c\r\nfile:///a.wav\r\n"),
              (Paths{"/b.wav", "/a.wav"}));
    EXPECT_EQ(pathsOfUriList("file:///last%20without%20end"), Paths{"/last without end"});
    EXPECT_EQ(pathsOfUriList(""), Paths());
}

TEST(FileUrls, BringEveryPathBackToTheByte) {
    std::string everyByte = "/";
    for (int byte = 1; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    EXPECT_EQ(pathOfUrl(urlOfPath(everyByte)), std::filesystem::path(everyByte));
}

} // namespace
} // namespace velmora::test
