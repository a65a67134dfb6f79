#pragma once

// The window, which the first request opens: a program that the session bus has started shows none before it
// knows what is asked of it.

#include "app/AppDelegate.h"
#include "app/AppWindow.h"

#include <memory>

namespace velmora {

struct LaunchRequest;

/// Main thread.
class RequestedWindow {
public:
    /// Does what `request` asks for. The window opens with what it asks for in it, or comes to the front when
    /// it is open already. False when it could not be made.
    bool serve(const LaunchRequest& request);

    bool isOpen() const { return m_window != nullptr; }

private:
    AppDelegate m_delegate;
    std::unique_ptr<AppWindow> m_window;
};

} // namespace velmora
