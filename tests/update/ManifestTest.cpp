#include "update/Manifest.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using UpdateChecker::parseManifest;

TEST(Manifest, HoldsVersionAddressAndNotes) {
    const auto release =
        parseManifest(R"({"version": "1.4.2", "url": "https://x.example/v", "notes": "Faster.", "n": 1})");
    ASSERT_TRUE(release);
    EXPECT_EQ(release->version, "1.4.2");
    EXPECT_EQ(release->url, QUrl("https://x.example/v"));
    EXPECT_EQ(release->notes, "Faster.");
}

TEST(Manifest, LosesBlanksAndTabsAroundTheVersionButNoLineFeeds) {
    EXPECT_EQ(parseManifest(R"({"version": " \t1.5 ", "url": "https://x.example"})")->version, "1.5");
    EXPECT_EQ(parseManifest(R"({"version": "1.5\n", "url": "https://x.example"})")->version, "1.5\n");
}

TEST(Manifest, NeedsNoNotes) {
    EXPECT_EQ(parseManifest(R"({"version": "1", "url": "https://x.example"})")->notes, std::nullopt);
    EXPECT_EQ(parseManifest(R"({"version": "1", "url": "https://x.example", "notes": 7})")->notes,
              std::nullopt);
    EXPECT_EQ(parseManifest(R"({"version": "1", "url": "https://x.example", "notes": ""})")->notes, "");
}

TEST(Manifest, IsAbsentWhenSomethingNeededIsMissingOrNoText) {
    for (const char* body :
         {"", "garbage", "{}", "[]", "\"text\"", "{\"version\": \"1\"", R"({"version": "1"})",
          R"({"url": "https://x.example"})", R"({"version": 1, "url": "https://x.example"})",
          R"({"version": "1", "url": 1})", R"({"version": "1", "url": ""})",
          R"({"version": "1", "url": "http://[broken"})"}) {
        EXPECT_FALSE(parseManifest(body)) << body;
    }
}

} // namespace
} // namespace velmora::test
