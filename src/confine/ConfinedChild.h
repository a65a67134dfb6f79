#pragma once

// Starts the tools that work on foreign data: archive tools and ffprobe. Each runs as a child that
// velmora-confine has walled in.

#include "confine/Rules.h"
#include "system/ChildProcess.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// As `runChild`, behind the wall that `rules` describe; 126 when the wall could not be put up. Absent also
/// when velmora-confine is not installed: nothing runs without the wall.
std::optional<int> runConfined(const std::filesystem::path& tool, const std::vector<std::string>& args,
                               int output, const Rules& rules, const ChildLimits& limits = {});

/// The program velmora-confine of this installation: in the folder libexec/velmora beside the folder of this
/// program, or, in a build tree, one folder higher. Absent when it is not there.
std::optional<std::filesystem::path> confineProgram();

/// Which layers of the wall this system offers, a line each; empty without velmora-confine.
std::string wallReport();

} // namespace velmora
