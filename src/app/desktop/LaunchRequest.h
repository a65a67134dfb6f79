#pragma once

// What one start of the program, or the desktop in place of a start, wants of the one instance.

#include "system/Paths.h"

#include <QByteArray>

namespace velmora {

struct LaunchRequest {
    Paths paths = {};    ///< to be scanned; none: the window is only brought to the front
    bool choose = false; ///< the file panel is to open

    /// The desktop's permission to take the focus, of XDG activation or of X11's startup notification; empty
    /// if it gave none.
    QByteArray activationToken = {};
};

} // namespace velmora
