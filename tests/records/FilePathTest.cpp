#include "records/FilePath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

namespace velmora::test {
namespace {

TEST(FilePath, KeepsTheBytesOfAPath) {
    for (const char* path :
         {"", "a.wav", "/", "/a.wav", "/m/a.wav", "/m//a.wav", "/m/./../a", "m/", "/\xFF/\xFE.wav"}) {
        EXPECT_EQ(FilePath(path).native(), path);
        EXPECT_EQ(std::filesystem::path(FilePath(path)).native(), path);
        EXPECT_EQ(FilePath(std::filesystem::path(path)), path);
    }
    EXPECT_EQ(FilePath().native(), "");
    EXPECT_EQ(FilePath(), FilePath(""));
}

TEST(FilePath, IsAFolderAndAName) {
    EXPECT_EQ(FilePath("/m/b c/a.wav").folder(), "/m/b c/");
    EXPECT_EQ(FilePath("/m/b c/a.wav").name(), "a.wav");
    EXPECT_EQ(FilePath("a.wav").folder(), "");
    EXPECT_EQ(FilePath(std::make_shared<const std::string>("/m/"), "a.wav"), "/m/a.wav");
}

TEST(FilePath, ComparesByBytes) {
    EXPECT_NE(FilePath("/m/a.wav"), FilePath("/n/a.wav"));
    EXPECT_NE(FilePath("/m/a.wav"), FilePath("/m/b.wav"));
    EXPECT_NE(FilePath("/m/a.wav"), FilePath("/m//a.wav"));
    EXPECT_LT(FilePath("/m/a/z.wav"), FilePath("/m/b.wav"));
    EXPECT_LT(FilePath("/m/Z.wav"), FilePath("/m/a.wav"));
    EXPECT_GT(FilePath("/m/\xFF.wav"), FilePath("/m/a.wav"));
}

TEST(FilePath, SharesItsFolderOnlyWithAFileBesideIt) {
    const FilePath one("/m/a.wav");
    const FilePath beside("/m/b.wav");
    EXPECT_FALSE(beside.sharesFolder(one));
    EXPECT_TRUE(beside.sharing(one).sharesFolder(one));
    EXPECT_EQ(beside.sharing(one), beside);

    const FilePath elsewhere("/n/b.wav");
    EXPECT_FALSE(elsewhere.sharing(one).sharesFolder(one));
    EXPECT_EQ(elsewhere.sharing(one), elsewhere);
}

} // namespace
} // namespace velmora::test
