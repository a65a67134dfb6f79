#pragma once

// Runs an archive tool and tells whether it succeeded. See confine/ConfinedChild.h for how a tool is started.

#include "confine/Rules.h"

#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

namespace velmora::Collector {

/// Runs `tool` with `args` within `rules`, its output discarded. True when it ran and exited with status 0.
/// No time limit; killed when `stop` is requested.
bool run(const std::filesystem::path& tool, const std::vector<std::string>& args, const Rules& rules = {},
         const std::stop_token& stop = {});

/// As `run`, with standard output written to the file `out`. True when the tool exited with status 0 and
/// `out` is not empty; otherwise `out` does not exist afterwards.
bool runCapturing(const std::filesystem::path& tool, const std::vector<std::string>& args,
                  const std::filesystem::path& out, const Rules& rules = {},
                  const std::stop_token& stop = {});

} // namespace velmora::Collector
