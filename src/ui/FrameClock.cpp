#include "ui/FrameClock.h"

#include <chrono>

namespace velmora {

/// Runs for ever; Qt Quick advances it once a frame.
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

void FrameClock::setRunning(bool running) {
    if (running != this->running()) {
        running ? m_frames->start() : m_frames->stop();
        emit runningChanged();
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
