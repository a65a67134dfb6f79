#pragma once

// The program on the session bus: org.freedesktop.Application, as the Desktop Entry Specification describes
// it.

#include "ui/SingleInstance.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

namespace velmora {

/// Passes what the bus asks on as `SingleInstance::requested`. Owned by the instance it serves.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance* instance);

public slots:
    // The bus knows these by these names.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    SingleInstance* m_instance;
};

} // namespace velmora
