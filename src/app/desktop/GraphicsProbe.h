#pragma once

// Finds out whether this machine has a graphics processor worth using. Without one the software adaptation of
// the scene graph draws the window faster than OpenGL in software would.

namespace velmora {

/// Whether the window is better drawn in software. Before the application object is created. A machine with a
/// render device is probed by a child process, which survives what a missing driver does to it and takes some
/// 50 ms.
bool isBetterInSoftware();

/// The child's part: creates an OpenGL context and writes the renderer's name to standard output. Returns the
/// exit status.
int probeGraphics(int argc, char** argv);

/// The argument that makes the program do the child's part.
inline constexpr const char* probeArgument = "--probe-graphics";

} // namespace velmora
