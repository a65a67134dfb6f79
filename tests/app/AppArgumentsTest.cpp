#include "app/AppArguments.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST(AppArguments, TakesPathsInTheirOrderAndMakesThemAbsolute) {
    const AppArguments arguments = readArguments({"/m/a.wav", "set", "file:///m/b%20c.wav", "-"});
    EXPECT_EQ(arguments.paths,
              (Paths{"/m/a.wav", fs::current_path() / "set", "/m/b c.wav", fs::current_path() / "-"}));
    EXPECT_FALSE(arguments.renderInto);
}

TEST(AppArguments, TakesNamesThatLookLikeOptionsAfterTwoDashes) {
    EXPECT_EQ(readArguments({"--", "--help"}).paths, Paths{fs::current_path() / "--help"});
}

TEST(AppArguments, RendersIntoTheDirectoryAfterTheFirstRender) {
    EXPECT_EQ(readArguments({"/m", "--render", "/tmp/shots", "--render", "/tmp/other"}).renderInto,
              fs::path("/tmp/shots"));
}

TEST(AppArguments, IgnoresRenderWithoutADirectory) {
    const AppArguments arguments = readArguments({"/m/a.wav", "--render"});
    EXPECT_FALSE(arguments.renderInto);
    EXPECT_EQ(arguments.unknownOption, "");
    EXPECT_EQ(arguments.paths, Paths{"/m/a.wav"});
}

TEST(AppArguments, KnowsItsOptionsAndNamesOthers) {
    EXPECT_TRUE(readArguments({"--help"}).help);
    EXPECT_TRUE(readArguments({"-h"}).help);
    EXPECT_TRUE(readArguments({"--version"}).version);
    EXPECT_TRUE(readArguments({"-V"}).version);
    EXPECT_EQ(readArguments({"--frobnicate", "--other"}).unknownOption, "--frobnicate");
}

} // namespace
} // namespace velmora::test
