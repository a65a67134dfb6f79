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

ApplicationAdaptor::ApplicationAdaptor(QObject* served, Request request)
    : QDBusAbstractAdaptor(served)
    , m_request(std::move(request)) {}

void ApplicationAdaptor::Activate(const QVariantMap& platformData) {
    m_request({}, tokenIn(platformData));
}

void ApplicationAdaptor::Open(const QStringList& uris, const QVariantMap& platformData) {
    m_request(pathsOfUriList(uris.join(u'\n').toUtf8()), tokenIn(platformData));
}

void ApplicationAdaptor::ActivateAction(const QString&, const QVariantList&,
                                        const QVariantMap& platformData) {
    Activate(platformData); // there are no actions to choose from
}

} // namespace velmora
