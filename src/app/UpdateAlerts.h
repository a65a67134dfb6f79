#pragma once

// The update checker with what it needs of this program: network, preferences, clock, alerts.

#include "update/UpdateChecker.h"

#include <QNetworkAccessManager>
#include <QSettings>

#include <functional>

namespace velmora {

class Alerts;

/// Main thread.
class UpdateAlerts {
public:
    /// Tells what it finds through `alerts`, which outlives this, once `bringToFront` has brought their
    /// window to the user.
    UpdateAlerts(Alerts& alerts, std::function<void()> bringToFront);

    void checkQuietly() { UpdateChecker::checkQuietly(m_program); }

    void checkInteractively() { UpdateChecker::checkInteractively(m_program); }

private:
    QSettings m_preferences;
    UpdateChecker::Program m_program;
    QNetworkAccessManager m_network; // last: its answers need the others
};

} // namespace velmora
