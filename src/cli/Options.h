#pragma once

// The command line of velmora-scan.

#include "system/Paths.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace velmora {

/// As deep as there are folders.
inline constexpr int allLevels = std::numeric_limits<int>::max();

/// What players offer and some more.
inline constexpr double minSpeed = 0.1;
inline constexpr double maxSpeed = 10;

/// What is written to standard output.
enum class Output : std::uint8_t {
    total,    ///< the total in two lines
    list,     ///< the names of the measured files
    files,    ///< a line a file: seconds, TAB, path
    folders,  ///< a line a folder: seconds, TAB, files, TAB, path
    csv,      ///< a table of the files
    json,     ///< one object
    findings, ///< a line a finding of a check
};

/// A command line that asks for a scan.
struct Options {
    Output output = Output::total;
    bool check = false;                            ///< every file is read and checked as well
    int depth = allLevels;                         ///< of the folders
    double speed = 1;                              ///< lengths are shown divided by it
    bool quiet = false;                            ///< no progress
    Paths paths = {};                              ///< as they were given
    Paths pathLists = {};                          ///< files of further paths; "-" is standard input
    std::optional<std::filesystem::path> zip = {}; ///< where the zip export goes; absent: none is wanted

    bool operator==(const Options&) const = default;
};

/// A command line that asks for a text on standard output and nothing else.
struct TextWanted {
    std::string text;
    bool operator==(const TextWanted&) const = default;
};

/// A command line that asks for the version and for what the program stands on.
struct InstallationWanted {
    bool operator==(const InstallationWanted&) const = default;
};

/// A command line that cannot be carried out; `text` says why, without a line feed.
struct UsageError {
    std::string text;
    bool operator==(const UsageError&) const = default;
};

using CommandLine = std::variant<Options, TextWanted, InstallationWanted, UsageError>;

/// Reads `arguments`, the program's name left out. Not for several threads at once.
CommandLine parseCommandLine(std::vector<std::string> arguments);

/// What --version writes: "velmora-scan 1.0.0" and a line feed.
std::string versionText();

/// What --help writes.
std::string helpText();

} // namespace velmora
