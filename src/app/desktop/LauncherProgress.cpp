#include "app/desktop/LauncherProgress.h"

#include "app/desktop/BusCall.h"
#include "app/desktop/SingleInstance.h"

#include <QDBusMessage>
#include <QVariantMap>

#include <chrono>

namespace velmora {

namespace {

constexpr std::chrono::milliseconds shortestPause{100};

} // namespace

LauncherProgress::LauncherProgress(QObject* parent)
    : QObject(parent) {
    m_pause.setSingleShot(true);
    m_pause.setInterval(shortestPause);
    connect(&m_pause, &QTimer::timeout, this, [this] { show(m_progress); });
}

LauncherProgress::~LauncherProgress() {
    m_pause.stop();
    show({});
}

void LauncherProgress::show(std::optional<double> progress) {
    m_progress = progress;
    if (m_progress != m_sent && !m_pause.isActive()) {
        send();
        m_pause.start();
    }
}

void LauncherProgress::send() {
    QDBusMessage update = QDBusMessage::createSignal(QStringLiteral("/com/orventa/Velmora/launcher"),
                                                     QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                     QStringLiteral("Update"));
    update << QStringLiteral("application://%1.desktop").arg(QLatin1String(applicationId))
           << QVariantMap{{QStringLiteral("progress"), m_progress.value_or(0)},
                          {QStringLiteral("progress-visible"), m_progress.has_value()}};
    sendToBus(update);
    m_sent = m_progress;
}

} // namespace velmora
