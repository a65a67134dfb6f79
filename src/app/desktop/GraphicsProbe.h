#pragma once

// Finds out whether this machine has a graphics processor worth using. Without one the software adaptation of
// the scene graph draws the window faster than OpenGL in software would.

namespace velmora {

/// Whether the window is better drawn in software. Before the application object is created. Where
/// there is a render device, a child process tries it, because a broken driver may end the process that loads
/// it; that takes about 50 ms.
bool isBetterInSoftware();

/// The child's part: creates an OpenGL context and writes the renderer's name to standard output. Returns the
/// exit status.
int probeGraphics(int argc, char** argv);

/// The argument that makes the program do the child's part.
inline constexpr const char* probeArgument = "--probe-graphics";

} // namespace velmora
