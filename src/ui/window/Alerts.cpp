#include "ui/window/Alerts.h"

#include <utility>

namespace velmora {

void Alerts::show(AlertText alert) {
    m_waiting.push_back(std::move(alert));
    emit settingChanged();
    emit changed();
}

void Alerts::accept() {
    if (open()) {
        const AlertText alert = takeFirst();
        if (alert.accepted) {
            alert.accepted();
        }
    }
}

void Alerts::dismiss() {
    if (open()) {
        takeFirst();
    }
}

void Alerts::turn() {
    if (setting() != nullptr) {
        AlertSwitch& shown = *m_waiting.front().setting;
        shown.on = !shown.on;
        emit settingChanged();
        if (shown.turned) {
            shown.turned(shown.on);
        }
    }
}

AlertText Alerts::takeFirst() {
    AlertText alert = std::move(m_waiting.front());
    m_waiting.pop_front();
    emit settingChanged();
    emit changed();
    return alert;
}

} // namespace velmora
