#pragma once

// How much of what could be tried is tried: a sample, or one share of everything, so that processes can try
// everything together.

#include <cstddef>

namespace velmora::test {

/// Whether everything is tried: whether the environment variable VELMORA_FAULTS is set, to "PART/PARTS".
bool everything();

/// Whether this process is to try the `index`th thing of everything.
bool isOurs(std::size_t index);

/// What chances are drawn with: the environment variable VELMORA_SEED, or 1.
unsigned seed();

} // namespace velmora::test
