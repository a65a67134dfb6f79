#include "ui/window/Alerts.h"

#include <utility>

namespace velmora {

void Alerts::show(AlertText alert) {
    m_waiting.push_back(std::move(alert));
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

AlertText Alerts::takeFirst() {
    AlertText alert = std::move(m_waiting.front());
    m_waiting.pop_front();
    emit changed();
    return alert;
}

} // namespace velmora
