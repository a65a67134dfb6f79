#include "ui/panel/Aside.h"

#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace velmora {

/// What a thread knows of the object that has started it, and may outlive.
struct Aside::Link {
    std::mutex lock;
    Aside* aside = nullptr; ///< null once it has gone
};

Aside::Aside(QObject* parent)
    : QObject(parent)
    , m_link(std::make_shared<Link>()) {
    m_link->aside = this;
}

Aside::~Aside() {
    const std::scoped_lock guard(m_link->lock);
    m_link->aside = nullptr;
}

void Aside::run(std::function<Answer()> work) {
    m_busy = true;
    const auto post = [number = ++m_last, link = m_link, work = std::move(work)] {
        Answer answer = work();
        const std::scoped_lock guard(link->lock);
        if (link->aside != nullptr) {
            QMetaObject::invokeMethod(
                link->aside,
                [aside = link->aside, number, answer = std::move(answer)] { aside->take(number, answer); },
                Qt::QueuedConnection);
        }
    };
    try {
        std::thread(post).detach();
    } catch (const std::system_error&) { // there is no further thread
        post();
    }
}

void Aside::forget() {
    ++m_last;
    m_busy = false;
}

void Aside::take(int number, const Answer& answer) {
    if (number == m_last) {
        m_busy = false;
        answer();
    }
}

} // namespace velmora
