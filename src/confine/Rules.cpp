#include "confine/Rules.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace velmora {

namespace {

template <typename Number>
bool readNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool readReach(std::string_view text, Reach& reach) {
    reach = text == "system" ? Reach::system : Reach::programs;
    return text == "system" || text == "programs";
}

bool readOption(std::string_view option, const std::string& value, ConfinedCommand& command) {
    Rules& rules = command.rules;
    if (option == "--parent") {
        return readNumber(value, command.parent);
    }
    if (option == "--reach") {
        return readReach(value, rules.reach);
    }
    if (option == "--read") {
        rules.readable = value;
        return true;
    }
    if (option == "--write") {
        rules.writable = value;
        return true;
    }
    if (option == "--memory") {
        return readNumber(value, rules.memoryBytes);
    }
    if (option == "--processor") {
        return readNumber(value, rules.processorSeconds);
    }
    return option == "--file" && readNumber(value, rules.fileBytes);
}

} // namespace

std::vector<std::string> argumentsFor(const ConfinedCommand& command) {
    const Rules& rules = command.rules;
    std::vector<std::string> arguments = {"--parent",    std::to_string(command.parent),
                                          "--reach",     rules.reach == Reach::system ? "system" : "programs",
                                          "--read",      rules.readable,
                                          "--write",     rules.writable,
                                          "--memory",    std::to_string(rules.memoryBytes),
                                          "--processor", std::to_string(rules.processorSeconds),
                                          "--file",      std::to_string(rules.fileBytes),
                                          "--"};
    arguments.insert(arguments.end(), command.tool.begin(), command.tool.end());
    return arguments;
}

std::optional<ConfinedCommand> commandFrom(std::span<const std::string> arguments) {
    ConfinedCommand command;
    while (arguments.size() >= 2 && arguments[0] != "--") {
        if (!readOption(arguments[0], arguments[1], command)) {
            return std::nullopt;
        }
        arguments = arguments.subspan(2);
    }
    if (arguments.size() < 2 || !arguments[1].starts_with('/') || command.parent <= 0) {
        return std::nullopt;
    }
    command.tool.assign(arguments.begin() + 1, arguments.end());
    return command;
}

} // namespace velmora
