#pragma once

// Random names that never collide, for everything made in the shared temporary directory.

#include <string>

namespace velmora {

/// A fresh random (version 4) UUID in canonical text form: 36 characters, upper-case hexadecimal and hyphens.
/// Throws std::system_error on a system that gives no random bytes.
std::string randomUuid();

} // namespace velmora
