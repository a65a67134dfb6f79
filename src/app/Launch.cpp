#include "app/Launch.h"

#include <QByteArray>

#include <algorithm>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// What stands behind the first "--render".
std::optional<fs::path> renderDirectory(const std::vector<std::string>& arguments) {
    const auto option = std::find(arguments.begin(), arguments.end(), "--render");
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

Launch readLaunch(const std::vector<std::string>& arguments) {
    Launch launch;
    launch.renderInto = renderDirectory(arguments);
    bool optionsEnded = false;
    for (const std::string& argument : arguments) {
        if (optionsEnded || argument.size() < 2 || argument.front() != '-') {
            launch.paths.push_back(absolutePath(argument));
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (argument == "--help" || argument == "-h") {
            launch.help = true;
        } else if (argument == "--version" || argument == "-V") {
            launch.version = true;
        } else if (argument != "--render" && launch.unknownOption.empty()) {
            launch.unknownOption = argument;
        }
    }
    return launch;
}

} // namespace velmora
