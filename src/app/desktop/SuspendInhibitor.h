#pragma once

// Keeps the machine awake.

#include <QObject>
#include <QString>

namespace velmora {

/// Asks the desktop's portal not to suspend the machine (org.freedesktop.portal.Inhibit). Without a portal,
/// or where it refuses, the machine suspends as ever. Main thread.
class SuspendInhibitor : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Lets it suspend.
    ~SuspendInhibitor() override;

    /// Keeps it awake until `release`; `reason` is shown to the user. Returns at once, and changes nothing
    /// while it is kept awake.
    void hold(const QString& reason);

    void release();

private:
    bool m_held = false;
    unsigned m_question = 0; ///< counts what was asked; answers to earlier questions are stale
    QString m_portal;        ///< by its unique name
    QString m_request;       ///< the object that stands for the wish; empty until the portal has answered
};

} // namespace velmora
