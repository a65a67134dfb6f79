#pragma once

// Runs an archive tool and tells how it ended. See confine/ConfinedChild.h for how a tool is started.

#include "confine/Rules.h"
#include "system/ChildProcess.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace velmora::Collector {

/// How a tool ended. True in a condition when it did what it was asked to do.
struct ToolEnd {
    /// What the exit status is of a tool that is there but could not be started behind its wall.
    static constexpr int notStarted = 126;

    bool succeeded = false;
    std::optional<int> status = {}; ///< exit status, 128 + n after signal n; absent when there is no tool
    std::string errors = {};        ///< the first 4 KiB of its standard error

    explicit operator bool() const { return succeeded; }
};

/// Runs `tool` with `args` within `rules`, its standard output discarded. It succeeded when it ran and exited
/// with status 0. No time limit but what `limits` set; `limits.hear` is not told anything.
ToolEnd run(const std::filesystem::path& tool, const std::vector<std::string>& args, const Rules& rules = {},
            const ChildLimits& limits = {});

/// As `run`, with standard output written to the file `out`. It succeeded when the tool exited with status 0
/// and `out` is not empty; otherwise `out` does not exist afterwards.
ToolEnd runCapturing(const std::filesystem::path& tool, const std::vector<std::string>& args,
                     const std::filesystem::path& out, const Rules& rules = {},
                     const ChildLimits& limits = {});

} // namespace velmora::Collector
