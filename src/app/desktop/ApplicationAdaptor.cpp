#include "ui/ApplicationAdaptor.h"

namespace velmora {

namespace {

QByteArray tokenIn(const QVariantMap& platformData) {
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    return (token.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString() : token)
        .toUtf8();
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(SingleInstance* instance)
    : QDBusAbstractAdaptor(instance)
    , m_instance(instance) {}

void ApplicationAdaptor::Activate(const QVariantMap& platformData) {
    emit m_instance->requested({}, tokenIn(platformData));
}

void ApplicationAdaptor::Open(const QStringList& uris, const QVariantMap& platformData) {
    emit m_instance->requested(pathsOfUriList(uris.join(u'\n').toUtf8()), tokenIn(platformData));
}

void ApplicationAdaptor::ActivateAction(const QString&, const QVariantList&,
                                        const QVariantMap& platformData) {
    Activate(platformData); // there are no actions to choose from
}

} // namespace velmora
