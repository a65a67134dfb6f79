#pragma once

// Allows one running instance a user: a second start gives its files to the first. Two would delete each
// other's temporary files.

#include "app/desktop/FileUrls.h"

#include <QByteArray>
#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <memory>

namespace velmora {

/// The name on the session bus and of the desktop file.
inline constexpr const char* applicationId = "com.orventa.Velmora";

/// Found by its name on the session bus, as org.freedesktop.Application; without a bus by a socket in the
/// user's runtime directory. Main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether this process is the only instance. If not, the running instance has been given `paths`, or has
    /// been asked to come to the front where there are none; this process can end.
    bool claim(const Paths& paths);

    /// Lets the next start be the only instance, while this process still ends. Nothing is requested of it
    /// from here on.
    void giveUp();

signals:
    /// A later start, or the desktop, wants `paths` scanned; none: only the window raised. `activationToken`
    /// lets the window take the focus, where the desktop asks for one; empty if it gave none.
    void requested(const velmora::Paths& paths, const QByteArray& activationToken);

private:
    bool claimOnBus(const Paths& paths);
    bool claimSocket(const Paths& paths);
    void takeConnection();

    std::unique_ptr<QLockFile> m_lock;
    QLocalServer m_server;
};

} // namespace velmora
