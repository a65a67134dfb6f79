#pragma once

// The program on the session bus: org.freedesktop.Application, as the Desktop Entry Specification describes
// it.

#include "system/Paths.h"

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace velmora {

/// Tells what the bus asks for. Main thread.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// As `SingleInstance::requested`. Not a signal: the bus would see it.
    using Request = std::function<void(const Paths& paths, const QByteArray& activationToken)>;

    /// `served` is the object that is registered on the bus; it owns this.
    ApplicationAdaptor(QObject* served, Request request);

public slots:
    // The bus knows these by these names.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    Request m_request;
};

} // namespace velmora
