#pragma once

// What velmora-scan tells the program that started it.

namespace velmora {

/// Where several apply: interrupted, then usage, zipFailed, nothingMeasured, incomplete.
enum class ExitStatus {
    complete = 0,        ///< every file found was measured
    incomplete = 1,      ///< something could not be read, the report not be written, or a directory not go;
                         ///< or a check found something
    usage = 2,           ///< the command line cannot be carried out
    nothingMeasured = 3, ///< no audio was found, or none could be measured
    zipFailed = 4,       ///< the zip export was not written
    interrupted = 130,   ///< ended by SIGINT, SIGTERM or SIGHUP, with nothing left behind
};

} // namespace velmora
