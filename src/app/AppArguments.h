#pragma once

// What the command line asks of the program. Arguments are bytes.

#include "app/desktop/FileUrls.h"

#include <optional>
#include <string>
#include <vector>

namespace velmora {

struct AppArguments {
    bool help = false;
    bool version = false;
    std::optional<std::filesystem::path> renderInto; ///< render pictures there and quit
    Paths paths;                                     ///< to be scanned, absolute
    std::string unknownOption;                       ///< empty if all options are known
};

/// Reads the arguments, without the program's name. "--render" as the last one is ignored; "--" ends the
/// options; a file URL is replaced by its path.
AppArguments readArguments(const std::vector<std::string>& arguments);

} // namespace velmora
