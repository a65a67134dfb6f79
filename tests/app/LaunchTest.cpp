#include "app/Launch.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST(Launch, TakesPathsInTheirOrderAndMakesThemAbsolute) {
    const Launch launch = readLaunch({"/m/a.wav", "set", "file:///m/b%20c.wav", "-"});
    EXPECT_EQ(launch.paths,
              (Paths{"/m/a.wav", fs::current_path() / "set", "/m/b c.wav", fs::current_path() / "-"}));
    EXPECT_FALSE(launch.renderInto);
}

TEST(Launch, TakesNamesThatLookLikeOptionsBehindTwoDashes) {
    EXPECT_EQ(readLaunch({"--", "--help"}).paths, Paths{fs::current_path() / "--help"});
}

TEST(Launch, RendersIntoTheDirectoryBehindTheFirstRender) {
    EXPECT_EQ(readLaunch({"/m", "--render", "/tmp/shots", "--render", "/tmp/other"}).renderInto,
              fs::path("/tmp/shots"));
}

TEST(Launch, IgnoresRenderWithoutADirectory) {
    const Launch launch = readLaunch({"/m/a.wav", "--render"});
    EXPECT_FALSE(launch.renderInto);
    EXPECT_EQ(launch.unknownOption, "");
    EXPECT_EQ(launch.paths, Paths{"/m/a.wav"});
}

TEST(Launch, KnowsItsOptionsAndNamesOthers) {
    EXPECT_TRUE(readLaunch({"--help"}).help);
    EXPECT_TRUE(readLaunch({"-h"}).help);
    EXPECT_TRUE(readLaunch({"--version"}).version);
    EXPECT_TRUE(readLaunch({"-V"}).version);
    EXPECT_EQ(readLaunch({"--frobnicate", "--other"}).unknownOption, "--frobnicate");
}

} // namespace
} // namespace velmora::test
