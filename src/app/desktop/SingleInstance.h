#pragma once

// Allows one running instance a user: a second start gives its files to the first. Two would delete each
// other's temporary files.

#include "app/desktop/LaunchRequest.h"

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <memory>
#include <optional>

namespace velmora {

/// The name on the session bus and of the desktop file.
inline constexpr const char* applicationId = "com.orventa.Velmora";

/// Found by its name on the session bus, as org.freedesktop.Application; without a bus by a socket in the
/// user's runtime directory. Main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether this process is the only instance. If not, the running instance has been given `request`,
    /// nothing where it is absent; this process can end.
    bool claim(const std::optional<LaunchRequest>& request);

    /// Lets the next start be the only instance, while this process still ends. Nothing is requested of it
    /// from here on.
    void giveUp();

signals:
    /// By a later start, or by the desktop.
    void requested(const velmora::LaunchRequest& request);

private:
    bool claimOnBus(const std::optional<LaunchRequest>& request);
    bool claimSocket(const std::optional<LaunchRequest>& request);
    void takeConnection();

    std::unique_ptr<QLockFile> m_lock;
    QLocalServer m_server;
};

} // namespace velmora
