#pragma once

// What the command line asks of the program. Arguments are bytes, read as those of velmora-scan are
// (OptionReader).

#include "system/Paths.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

struct AppArguments {
    bool help = false;
    bool version = false;
    std::optional<std::filesystem::path> renderInto; ///< render pictures there and quit
    bool choose = false;                             ///< open the file panel at once
    bool service = false;                            ///< wait for what the session bus asks for
    Paths paths;                                     ///< to be scanned, absolute
    std::string error;                               ///< why nothing can be done; empty if all is right
};

/// Reads the arguments, without the program's name. "--render" as the last one is ignored, its directory may
/// also be written as "--render=DIR"; a file URL is replaced by its path. One thread.
AppArguments readArguments(std::vector<std::string> arguments);

} // namespace velmora
