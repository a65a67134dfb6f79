// The command line of velmora-confine: a tool gets the rules that were meant for it, or does not start.

#include "confine/Rules.h"
#include "fuzz/Targets.h"

#include <limits>

namespace velmora::fuzz {

namespace {

/// A command made of the input's pieces, whatever they hold.
ConfinedCommand anyCommand(Input input) {
    ConfinedCommand command;
    command.parent = 1 + static_cast<int>(input.number() % std::numeric_limits<int>::max());
    command.rules.reach = input.byte() % 2 == 0 ? Reach::programs : Reach::system;
    command.rules.memoryBytes = input.number();
    command.rules.processorSeconds = input.number();
    command.rules.fileBytes = input.number();
    command.rules.readable = input.text();
    command.rules.writable = input.text();
    command.tool = {"/" + input.text()};
    while (!input.isUsedUp()) {
        command.tool.push_back(input.text());
    }
    return command;
}

} // namespace

void fuzzConfineRules(Bytes bytes) {
    const ConfinedCommand sent = anyCommand(Input(bytes));
    require(commandFrom(argumentsFor(sent)) == sent, "rules arrive as they were sent");

    const std::vector<std::string> arguments = textsOf(bytes, 64);
    if (const auto command = commandFrom(arguments)) {
        require(command->parent > 0, "a tool has a parent");
        require(!command->tool.empty() && command->tool.front().starts_with('/'), "a tool has a whole path");
        require(commandFrom(argumentsFor(*command)) == command, "rules that were understood are kept");
    }
}

} // namespace velmora::fuzz
