#include "confine/Rules.h"

#include <gtest/gtest.h>

namespace velmora {

namespace {

const ConfinedCommand command{
    .parent = 4711,
    .rules = {.reach = Reach::programs,
              .readable = "/music/--write/caf\xE9\n.zip",
              .writable = "/tmp/out",
              .memoryBytes = std::uint64_t{1} << 40,
              .processorSeconds = 7,
              .fileBytes = 1},
    .tool = {"/usr/bin/tar", "-x", "--", "", "--read", "/etc"},
};

TEST(Rules, AreReadAsTheyWereWritten) {
    EXPECT_EQ(commandFrom(argumentsFor(command)), command);
    const ConfinedCommand plain{.parent = 1, .rules = {}, .tool = {"/bin/true"}};
    EXPECT_EQ(commandFrom(argumentsFor(plain)), plain);
}

TEST(Rules, AreNotGuessed) {
    using Words = std::vector<std::string>;
    EXPECT_FALSE(commandFrom(Words{}));
    EXPECT_FALSE(commandFrom(Words{"--"}));
    EXPECT_FALSE(commandFrom(Words{"--", "/bin/true"})); // no parent
    EXPECT_FALSE(commandFrom(Words{"--parent", "1", "--"}));
    EXPECT_FALSE(commandFrom(Words{"--parent", "1", "--", "true"})); // not absolute
    for (const char* number : {"", "x", "1x", "-1", "0", "99999999999999999999"}) {
        EXPECT_FALSE(commandFrom(Words{"--parent", number, "--", "/bin/true"})) << number;
    }
    for (const char* option : {"--memory", "--processor", "--file", "--reach", "--other", ""}) {
        EXPECT_FALSE(commandFrom(Words{"--parent", "1", option, "x", "--", "/bin/true"})) << option;
    }
}

TEST(Rules, AreRefusedWhereverTheyAreCutOff) {
    const std::vector<std::string> whole = argumentsFor(command);
    for (std::size_t size = 0; size < whole.size() - command.tool.size() + 1; ++size) {
        EXPECT_FALSE(commandFrom(std::span(whole).first(size))) << size;
    }
}

} // namespace

} // namespace velmora
