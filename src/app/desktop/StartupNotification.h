#pragma once

// Startup notification on X11, as the Startup Notification Protocol and the Extended Window Manager Hints
// describe it. Qt does it for the start of the program; it knows nothing of one that another instance took
// over.

#include <QByteArray>

#include <cstdint>

class QWindow;

namespace velmora {

/// The time of the server at which the user asked for a start, in milliseconds: what follows the last "_TIME"
/// of `startupId`. 0, which stands for no time, when there is none.
std::uint32_t timeOfStartup(const QByteArray& startupId);

/// Ends the sign that the desktop shows for a start, and asks for the focus for `window` as of the moment of
/// that start. Nothing where `startupId` is empty or the desktop is not X11. Main thread.
void completeStartup(QWindow& window, const QByteArray& startupId);

} // namespace velmora
