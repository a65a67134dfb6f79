#pragma once

// Whether a Wayland compositor has a seat: a pointer, a keyboard or a touch screen.

namespace velmora {

/// Asks the compositor of this session, once. False without one. Before the application object exists.
bool isOnWaylandWithoutSeat();

} // namespace velmora
