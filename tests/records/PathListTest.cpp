#include "records/PathList.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(PathList, HoldsPathsInTheirOrder) {
    const PathList list = Paths{"/m/b.wav", "/m/a\n\xFF.wav", "", "/m/b.wav"};
    EXPECT_EQ(list.size(), 4U);
    EXPECT_EQ(list.front(), "/m/b.wav");
    EXPECT_EQ(Paths(list.begin(), list.end()), (Paths{"/m/b.wav", "/m/a\n\xFF.wav", "", "/m/b.wav"}));
}

TEST(PathList, MayBeEmpty) {
    for (const PathList& list : {PathList(), PathList(Paths()), PathList().with({})}) {
        EXPECT_TRUE(list.empty());
        EXPECT_EQ(list.begin(), list.end());
        EXPECT_EQ(list, PathList());
    }
}

TEST(PathList, GrowsWithoutChangingTheOthers) {
    const PathList list{"/a", "/b"};
    const PathList longer = list.with({"/c"});
    EXPECT_EQ(Paths(longer.begin(), longer.end()), (Paths{"/a", "/b", "/c"}));
    const PathList longest = longer.with({"/d"});
    EXPECT_EQ(Paths(longest.begin(), longest.end()), (Paths{"/a", "/b", "/c", "/d"}));
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(PathList().with({"/c"}), PathList{"/c"});
}

TEST(PathList, IsEqualToOneOfTheSamePaths) {
    EXPECT_EQ((PathList{"/a", "/b"}), (Paths{"/a", "/b"}));
    EXPECT_EQ((PathList{"/a", "/b"}), PathList{"/a"}.with({"/b"}));
    EXPECT_NE((PathList{"/a", "/b"}), (PathList{"/a", "/c"}));
    EXPECT_NE((PathList{"/a", "/b"}), PathList{"/a"});
}

} // namespace
} // namespace velmora
