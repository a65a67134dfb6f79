#pragma once

// What this installation stands on: who reports that something cannot be unpacked or timed is asked for it.

#include <string>

namespace velmora {

/// A line each: the libraries with the version that is loaded, the layers of the wall that this system
/// offers, the tools, and of those that are missing what their absence costs. Starts the private programs for
/// what they alone know. Blocks; any thread.
std::string installationReport();

} // namespace velmora
