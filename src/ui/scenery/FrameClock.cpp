#include "ui/scenery/FrameClock.h"

#include <chrono>

namespace velmora {

/// Has no end; Qt Quick advances it once a frame.
class FrameClock::Frames : public QAbstractAnimation {
public:
    explicit Frames(FrameClock& clock)
        : QAbstractAnimation(&clock)
        , m_clock(clock) {}

    int duration() const override { return -1; }

protected:
    void updateCurrentTime(int /*milliseconds*/) override { m_clock.tick(); }

private:
    FrameClock& m_clock;
};

FrameClock::FrameClock(QObject* parent)
    : QObject(parent)
    , m_frames(new Frames(*this)) {}

FrameClock::~FrameClock() = default;

bool FrameClock::running() const {
    return m_frames->state() == QAbstractAnimation::Running;
}

void FrameClock::setWindow(QWindow* window) {
    if (m_window == window) {
        return;
    }
    if (m_window != nullptr) {
        m_window->disconnect(this);
    }
    m_window = window;
    if (window != nullptr) {
        connect(window, &QWindow::visibilityChanged, this, &FrameClock::startOrStop);
    }
    startOrStop();
    emit windowChanged();
}

void FrameClock::setAnimated(bool animated) {
    if (m_animated != animated) {
        m_animated = animated;
        startOrStop();
        emit animatedChanged();
    }
}

void FrameClock::startOrStop() {
    const bool visible = m_window != nullptr && m_window->visibility() != QWindow::Hidden &&
                         m_window->visibility() != QWindow::Minimized;
    if (visible && m_animated) {
        m_frames->start();
    } else {
        m_frames->stop();
    }
}

double FrameClock::now() {
    using namespace std::chrono;
    constexpr sys_days referenceDate = 2001y / January / 1;
    return duration<double>(system_clock::now() - referenceDate).count();
}

void FrameClock::tick() {
    m_time = now();
    emit timeChanged();
}

} // namespace velmora
