#pragma once

// The end of a program whose work does not end: a thread that reads from a share that has stopped answering
// cannot be told to stop.

#include <filesystem>

namespace velmora {

/// Ends the program with ExitStatus::interrupted in two seconds at the latest, at once when `signals`
/// (EndingSignals::descriptor) becomes readable again. `directory` is removed first; an empty path is none. A
/// program that ends by itself before that is not disturbed. Where no thread can be started nothing happens.
void endSoon(int signals, const std::filesystem::path& directory);

} // namespace velmora
