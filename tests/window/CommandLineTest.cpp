// What the program answers on a terminal, where there is no display.

#include "tests/window/Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const QProcessEnvironment nothing;

TEST(WindowCommandLine, TellsVersionAndHelpWithoutADisplay) {
    EXPECT_EQ(run(VELMORA, {"--version"}, nothing), "velmora " VELMORA_VERSION "\n");
    const std::string help = run(VELMORA, {"-h"}, nothing).toStdString();
    EXPECT_THAT(help, StartsWith("usage: velmora [OPTION…] [PATH…]\n"));
    for (const char* option : {"--choose ", "--render DIR ", "--service ", "-V, --version ", "-h, --help "}) {
        EXPECT_THAT(help, HasSubstr("\n  " + std::string(option)));
    }
}

TEST(WindowCommandLine, EndsWith2AtAnUnknownOption) {
    Process velmora(VELMORA, {"--frobnicate"}, nothing);
    EXPECT_EQ(velmora.wait(), 2);
    EXPECT_EQ(velmora.errors(),
              "velmora: unknown option '--frobnicate'\nvelmora: 'velmora --help' tells more\n");
    EXPECT_EQ(velmora.output(), "");
}

} // namespace
} // namespace velmora::test
