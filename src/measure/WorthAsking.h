#pragma once

#include <cstdint>

namespace velmora {

/// What it pays to ask the system for before files are measured; each includes those before it.
enum class WorthAsking : std::uint8_t {
    nothing, ///< they are in memory, or come quickly
    names,   ///< a look-up is a round trip, and many may be under way at once
    content, ///< seeks are saved where all is asked for in the order of the places on the disk
};

} // namespace velmora
