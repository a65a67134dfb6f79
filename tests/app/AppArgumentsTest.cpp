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

TEST(AppArguments, RendersIntoTheDirectoryAfterAnEqualsSign) {
    EXPECT_EQ(readArguments({"--render=/tmp/shots"}).renderInto, fs::path("/tmp/shots"));
}

TEST(AppArguments, IgnoresRenderWithoutADirectory) {
    const AppArguments arguments = readArguments({"/m/a.wav", "--render"});
    EXPECT_FALSE(arguments.renderInto);
    EXPECT_EQ(arguments.error, "");
    EXPECT_EQ(arguments.paths, Paths{"/m/a.wav"});
}

TEST(AppArguments, NamesAFolderByItsOwnName) {
    const fs::path here = fs::current_path();
    EXPECT_EQ(readArguments({"."}).paths, Paths{here});
    EXPECT_EQ(readArguments({".."}).paths, Paths{here.parent_path()});
    EXPECT_EQ(readArguments({"set/"}).paths, Paths{here / "set"});
    EXPECT_EQ(readArguments({"file:///m/./set/"}).paths, Paths{"/m/set"});
}

TEST(AppArguments, ChoosesWithPathsAndWithout) {
    EXPECT_FALSE(readArguments({"/m/a.wav"}).choose);
    EXPECT_TRUE(readArguments({"--choose"}).choose);
    const AppArguments both = readArguments({"/m/a.wav", "--choose"});
    EXPECT_TRUE(both.choose);
    EXPECT_EQ(both.paths, Paths{"/m/a.wav"});
}

TEST(AppArguments, WaitsForTheBusOnlyWhenToldTo) {
    EXPECT_FALSE(readArguments({}).service);
    const AppArguments arguments = readArguments({"--service"});
    EXPECT_TRUE(arguments.service);
    EXPECT_EQ(arguments.error, "");
}

TEST(AppArguments, KnowsItsOptionsInAllForms) {
    EXPECT_TRUE(readArguments({"--help"}).help);
    EXPECT_TRUE(readArguments({"-h"}).help);
    EXPECT_TRUE(readArguments({"--version"}).version);
    EXPECT_TRUE(readArguments({"-V"}).version);
    EXPECT_TRUE(readArguments({"/m", "--vers"}).version);
    EXPECT_TRUE(readArguments({"-Vh"}).version) << "combined";
}

TEST(AppArguments, SayWhatIsWrongWithThem) {
    EXPECT_EQ(readArguments({"--frobnicate", "--other"}).error, "unknown option '--frobnicate'");
    EXPECT_EQ(readArguments({"-x"}).error, "unknown option '-x'");
    EXPECT_EQ(readArguments({"--choose=me"}).error, "option '--choose' takes no value");
    EXPECT_EQ(readArguments({"--help=me"}).error, "option '-h' takes no value");
    EXPECT_EQ(readArguments({"--\x1B[2J"}).error, "unknown option '--\\x1B[2J'") << "fit for a terminal";
}

} // namespace
} // namespace velmora::test
