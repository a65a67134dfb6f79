#pragma once

// From the paths of the command line to what the scan is given: absolute paths of things that are there.

#include "cli/Options.h"
#include "records/PathList.h"

#include <string>
#include <vector>

namespace velmora {

struct Sources {
    PathList paths;                    ///< absolute, links not resolved, in the order they were given
    std::vector<std::string> problems; ///< why a path was left out, a message each

    bool operator==(const Sources&) const = default;
};

/// The paths in `options`, then those in the files it names, where a NUL separates each from the next and may
/// end the last. Blocks until all of these have been read; throws std::system_error, which names the file,
/// when one cannot be.
PathList givenPaths(const Options& options);

/// Sorts `given` into what can be scanned and what is not there or a folder that may not be entered.
Sources locate(const PathList& given);

} // namespace velmora
