#pragma once

// The end of the Wayland compositor, as at a logout.

namespace velmora {

/// Removes the private directory when the compositor has ended, before Qt ends the program with status 1: Qt
/// 6 gives notice of that in a warning alone. From here on, and not on other platforms, where no such warning
/// comes. Any thread.
void endInOrderWithoutCompositor();

} // namespace velmora
