#pragma once

// The program on the session bus: org.freedesktop.Application, as the Desktop Entry Specification describes
// it.

#include "app/desktop/LaunchRequest.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace velmora {

/// The action that opens the file panel, as the desktop file names it.
inline constexpr const char* chooseAction = "choose";

/// Tells what the bus asks for. Main thread.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Not a signal: the bus would see it.
    using Serve = std::function<void(const LaunchRequest& request)>;

    /// `served` is the object that is registered on the bus; it owns this.
    ApplicationAdaptor(QObject* served, Serve serve);

public slots:
    // The bus knows these by these names.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// The one action is "choose", which opens the file panel; any other only activates.
    void ActivateAction(const QString& action, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    Serve m_serve;
};

} // namespace velmora
