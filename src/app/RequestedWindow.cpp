#include "app/RequestedWindow.h"

#include "app/desktop/LaunchRequest.h"

namespace velmora {

bool RequestedWindow::serve(const LaunchRequest& request) {
    const bool wasOpen = isOpen();
    if (!wasOpen || !request.paths.empty()) {
        m_delegate.open(request.paths);
    }
    if (!wasOpen) {
        m_window = std::make_unique<AppWindow>(m_delegate);
        if (!m_window->isShown()) {
            m_window.reset();
            return false;
        }
    }
    if (wasOpen || !request.activationToken.isEmpty()) {
        m_window->raise(request.activationToken);
    }
    if (request.choose) {
        m_window->choose();
    }
    return true;
}

} // namespace velmora
