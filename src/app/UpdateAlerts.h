#pragma once

// The update checker with what it needs of this program: network, preferences, clock, alerts.

#include "ui/window/Alerts.h"
#include "update/UpdateChecker.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QSettings>

#include <functional>
#include <optional>

namespace velmora {

/// Main thread.
class UpdateAlerts : public QObject {
    Q_OBJECT

public:
    /// Tells what it finds through `alerts`, which outlives this, once `bringToFront` has brought their
    /// window to the user.
    UpdateAlerts(Alerts& alerts, std::function<void()> bringToFront,
                 UpdateChecker::QuietCheck quietCheck = UpdateChecker::builtQuietCheck());

    void checkQuietly() { UpdateChecker::checkQuietly(m_program); }

    /// Asks because the user wants to know; changes nothing while the answer to such a question is on its
    /// way.
    void checkInteractively();

    /// What turns the quiet check off and on; absent where it is left out.
    std::optional<AlertSwitch> quietCheckSwitch();

signals:
    /// A question of the user is on its way, or has been answered.
    void checking(bool underWay);

private:
    bool m_checking = false;
    QSettings m_preferences;
    UpdateChecker::Program m_program;
    QNetworkAccessManager m_network; // last: its answers need the others
};

} // namespace velmora
