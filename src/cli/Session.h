#pragma once

// One scan from start to clean end, with its progress on the terminal. What it has to say is kept until
// everything temporary is gone: whoever then reads or does not read it, nothing is left to clean up.

#include "cli/ExitStatus.h"
#include "cli/Options.h"
#include "cli/Sink.h"
#include "records/PathList.h"

#include <filesystem>
#include <string>
#include <vector>

namespace velmora {

/// An interrupted scan has no report, and no problem but that of its end.
struct Outcome {
    ExitStatus status = ExitStatus::complete;
    Text report;                       ///< for standard output
    std::vector<std::string> problems; ///< messages for standard error
};

/// Scans `paths` (absolute) as `options` ask and writes the zip export when they ask for it. Blocks until all
/// background work has ended and the private directory is gone. Where there is no directory to work in,
/// archives and the zip export fail. Main thread; makes the QCoreApplication.
Outcome runScan(const Options& options, const PathList& paths);

} // namespace velmora
