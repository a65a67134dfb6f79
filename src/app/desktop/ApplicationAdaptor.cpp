#include "app/desktop/ApplicationAdaptor.h"

#include "app/desktop/FileUrls.h"

#include <utility>

namespace velmora {

namespace {

QByteArray tokenIn(const QVariantMap& platformData) {
    const QString token = platformData.value(QStringLiteral("activation-token")).toString();
    return (token.isEmpty() ? platformData.value(QStringLiteral("desktop-startup-id")).toString() : token)
        .toUtf8();
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(QObject* served, Serve serve)
    : QDBusAbstractAdaptor(served)
    , m_serve(std::move(serve)) {}

void ApplicationAdaptor::Activate(const QVariantMap& platformData) {
    m_serve({.activationToken = tokenIn(platformData)});
}

void ApplicationAdaptor::Open(const QStringList& uris, const QVariantMap& platformData) {
    m_serve({.paths = pathsOfUriList(uris.join(u'\n').toUtf8()), .activationToken = tokenIn(platformData)});
}

void ApplicationAdaptor::ActivateAction(const QString& action, const QVariantList& /*parameter*/,
                                        const QVariantMap& platformData) {
    m_serve({.choose = action == chooseAction, .activationToken = tokenIn(platformData)});
}

} // namespace velmora
