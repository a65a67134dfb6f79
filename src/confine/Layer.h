#pragma once

// The wall stands in layers, one a header beside this one. Each is put up for the calling process and all
// that it becomes or starts, and cannot be taken down. A kernel that does not offer a layer leaves it out;
// one that offers it but fails to put it up ends the program, and no tool runs.

#include <cstdint>
#include <stdexcept>

namespace velmora {

enum class Layer : std::uint8_t {
    stands,
    notOffered, ///< by this kernel, or to this user
};

/// A layer that is offered could not be put up.
class WallError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace velmora
