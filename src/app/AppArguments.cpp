#include "app/AppArguments.h"

#include "app/desktop/FileUrls.h"
#include "system/FileName.h"
#include "system/OptionReader.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <iterator>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr const char* windowOptions = ":Vh"; // with the colon, a missing value is reported as ':'
constexpr int renderOption = firstOptionWithoutLetter;
constexpr int chooseOption = renderOption + 1;
constexpr int serviceOption = renderOption + 2;

const std::array<option, 6> windowLongOptions = {{{"choose", no_argument, nullptr, chooseOption},
                                                  {"render", required_argument, nullptr, renderOption},
                                                  {"service", no_argument, nullptr, serviceOption},
                                                  {"version", no_argument, nullptr, 'V'},
                                                  {"help", no_argument, nullptr, 'h'},
                                                  {nullptr, 0, nullptr, 0}}};

/// The argument after the first "--render", whatever stands before it; absent without one.
std::optional<fs::path> renderDirectory(const std::vector<std::string>& arguments) {
    const auto option = std::ranges::find(arguments, "--render");
    if (option == arguments.end() || option + 1 == arguments.end()) {
        return std::nullopt;
    }
    return fs::path(*(option + 1));
}

/// A file that cannot be told from its place, because the working directory has gone, stays as it is given.
fs::path givenPath(const fs::path& argument) {
    const auto fromUrl = pathOfUrl(QByteArrayView(argument.c_str()));
    fs::path path = fromUrl.value_or(argument);
    try {
        return absolutePath(path);
    } catch (const fs::filesystem_error&) {
        return path;
    }
}

} // namespace

AppArguments readArguments(std::vector<std::string> arguments) {
    AppArguments result;
    result.renderInto = renderDirectory(arguments);
    OptionReader reader(arguments, windowOptions, windowLongOptions);
    for (int letter = reader.next(); letter != -1; letter = reader.next()) {
        if (letter == 'h') {
            result.help = true;
            return result;
        }
        if (letter == 'V') {
            result.version = true;
            return result;
        }
        if (letter == chooseOption) {
            result.choose = true;
        } else if (letter == serviceOption) {
            result.service = true;
        } else if (letter == renderOption) {
            result.renderInto = result.renderInto.value_or(optarg);
        } else if (letter != ':') { // only --render wants a value
            result.error = reader.error(letter);
            return result;
        }
    }
    std::ranges::transform(reader.rest(), std::back_inserter(result.paths), &givenPath);
    return result;
}

} // namespace velmora
