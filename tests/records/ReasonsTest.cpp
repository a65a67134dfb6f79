#include "records/Reasons.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string_view>

namespace velmora {
namespace {

TEST(Reasons, HaveWordsOfTheirOwnEach) {
    std::set<std::string_view> words;
    const int count = static_cast<int>(Reason::noDirectory) + 1; // the last
    for (int i = 0; i < count; ++i) {
        const std::string_view text = wordsFor(static_cast<Reason>(i));
        EXPECT_FALSE(text.empty()) << i;
        EXPECT_TRUE(words.insert(text).second) << text;
    }
}

TEST(Reasons, TellWhyAFileCouldNotBeOpened) {
    EXPECT_EQ(reasonOfOpening(EACCES), Reason::permissionDenied);
    EXPECT_EQ(reasonOfOpening(EPERM), Reason::permissionDenied);
    EXPECT_EQ(reasonOfOpening(ENOENT), Reason::gone);
    EXPECT_EQ(reasonOfOpening(ENOTDIR), Reason::gone);
    EXPECT_EQ(reasonOfOpening(ELOOP), Reason::gone);
    EXPECT_EQ(reasonOfOpening(EINVAL), Reason::notRegular);
    EXPECT_EQ(reasonOfOpening(ENXIO), Reason::notRegular);
    EXPECT_EQ(reasonOfOpening(EIO), Reason::cannotBeRead);
    EXPECT_EQ(reasonOfOpening(EMFILE), Reason::cannotBeRead);
}

} // namespace
} // namespace velmora
