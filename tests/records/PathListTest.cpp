#include "records/PathList.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace velmora {
namespace {

TEST(PathList, HoldsPathsInTheirOrder) {
    const PathList list = Paths{"/m/b.wav", "/m/a\n\xFF.wav", "", "/m/b.wav"};
    EXPECT_EQ(list.size(), 4U);
    EXPECT_EQ(list.front(), "/m/b.wav");
    EXPECT_EQ(list.paths(), (Paths{"/m/b.wav", "/m/a\n\xFF.wav", "", "/m/b.wav"}));
}

TEST(PathList, HoldsPathsThatShareMuchOrNothing) {
    const std::string folder = "/" + std::string(300, 'f') + "/";
    const std::string deep = "/" + std::string(20'000, 'd');
    const Paths paths = {folder + "1.wav", folder + "1.wav", folder,    folder + "10.wav", "", "x", deep,
                         deep + "/1.wav",  deep + "/2.wav",  "/" + deep};
    const PathList list = paths;
    EXPECT_EQ(list.paths(), paths);
    EXPECT_EQ(list.with(paths).size(), 2 * paths.size());
    EXPECT_EQ(*std::next(list.with(paths).begin(), 18), paths[8]);
}

TEST(PathListMaker, StartsAnewAfterEachList) {
    PathListMaker maker;
    maker.add("/m/a.wav");
    maker.add("/m/b.wav");
    EXPECT_EQ(maker.list(), (PathList{"/m/a.wav", "/m/b.wav"}));
    maker.add("/m/c.wav");
    EXPECT_EQ(maker.list(), PathList{"/m/c.wav"});
    EXPECT_EQ(maker.list(), PathList());
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
    EXPECT_EQ(longer.paths(), (Paths{"/a", "/b", "/c"}));
    const PathList longest = longer.with({"/d"});
    EXPECT_EQ(longest.paths(), (Paths{"/a", "/b", "/c", "/d"}));
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
