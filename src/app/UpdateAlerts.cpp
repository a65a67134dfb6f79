#include "app/UpdateAlerts.h"

#include <QDesktopServices>
#include <QHostAddress>

#include <chrono>
#include <utility>

namespace velmora {

namespace {

double secondsSince1970() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// The maker's address, or one on this machine that the environment names: a release is tried out with it
/// before it is published.
QUrl manifestAddress() {
    const QUrl local(qEnvironmentVariable("VELMORA_MANIFEST_URL"));
    return QHostAddress(local.host()).isLoopback() ? local : UpdateChecker::manifestURL();
}

AlertText textOf(const UpdateChecker::Alert& alert) {
    AlertText text{alert.title, alert.body};
    if (alert.download) {
        text.acceptTitle = QStringLiteral("Download");
        text.dismissTitle = QStringLiteral("Later");
        text.accepted = [url = *alert.download] { QDesktopServices::openUrl(url); };
    }
    return text;
}

} // namespace

UpdateAlerts::UpdateAlerts(Alerts& alerts, std::function<void()> bringToFront,
                           UpdateChecker::QuietCheck quietCheck)
    : m_program{m_network,
                m_preferences,
                manifestAddress(),
                UpdateChecker::currentVersion(),
                &secondsSince1970,
                [&alerts, bringToFront = std::move(bringToFront)](const UpdateChecker::Alert& alert) {
                    bringToFront();
                    alerts.show(textOf(alert));
                },
                quietCheck} {}

std::optional<AlertSwitch> UpdateAlerts::quietCheckSwitch() {
    if (m_program.quietCheck == UpdateChecker::QuietCheck::leftOut) {
        return std::nullopt;
    }
    return AlertSwitch{
        .title = QStringLiteral("Look for updates once a day"),
        .on = UpdateChecker::wantsQuietCheck(m_preferences),
        .turned = [this](bool on) { m_preferences.setValue(UpdateChecker::quietCheckPreference, on); }};
}

void UpdateAlerts::checkInteractively() {
    if (std::exchange(m_checking, true)) {
        return;
    }
    emit checking(true);
    UpdateChecker::Program asked = m_program;
    asked.show = [this](const UpdateChecker::Alert& alert) {
        m_checking = false;
        emit checking(false);
        m_program.show(alert);
    };
    UpdateChecker::checkInteractively(asked);
}

} // namespace velmora
