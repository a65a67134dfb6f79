#include "app/AppArguments.h"

#include <QByteArray>

#include <algorithm>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// The argument after the first "--render"; absent without one.
std::optional<fs::path> renderDirectory(const std::vector<std::string>& arguments) {
    const auto option = std::ranges::find(arguments, "--render");
    if (option == arguments.end() || option + 1 == arguments.end()) {
        return std::nullopt;
    }
    return fs::path(*(option + 1));
}

fs::path absolutePath(const std::string& argument) {
    const auto path = pathOfUrl(QByteArrayView(argument.data(), static_cast<qsizetype>(argument.size())));
    return fs::absolute(path ? *path : fs::path(argument));
}

} // namespace

AppArguments readArguments(const std::vector<std::string>& arguments) {
    AppArguments result;
    result.renderInto = renderDirectory(arguments);
    bool optionsEnded = false;
    for (const std::string& argument : arguments) {
        if (optionsEnded || argument.size() < 2 || argument.front() != '-') {
            result.paths.push_back(absolutePath(argument));
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (argument == "--help" || argument == "-h") {
            result.help = true;
        } else if (argument == "--version" || argument == "-V") {
            result.version = true;
        } else if (argument != "--render" && result.unknownOption.empty()) {
            result.unknownOption = argument;
        }
    }
    return result;
}

} // namespace velmora
