#include "ui/kit/Spring.h"

#include <QAbstractAnimation>

#include <cmath>
#include <numbers>

namespace velmora {

namespace {

/// A spring below both is at rest.
constexpr double restStretch = 1e-4;
constexpr double restSpeed = 1e-3;

} // namespace

SpringMotion springAfter(double seconds, const SpringMotion& start, double response, double dampingFraction) {
    const double undamped = 2 * std::numbers::pi / response;
    const double decay = dampingFraction * undamped;
    const double damped = undamped * std::sqrt(1 - dampingFraction * dampingFraction);
    const double sine = (start.speed + decay * start.stretch) / damped;
    const double c = std::cos(damped * seconds);
    const double s = std::sin(damped * seconds);
    const double fall = std::exp(-decay * seconds);
    return {
        .stretch = fall * (start.stretch * c + sine * s),
        .speed = fall *
                 ((sine * damped - decay * start.stretch) * c - (start.stretch * damped + decay * sine) * s),
    };
}

/// Runs until the spring is at rest; Qt Quick advances it once a frame.
class Spring::Frames : public QAbstractAnimation {
public:
    explicit Frames(Spring& spring)
        : QAbstractAnimation(&spring)
        , m_spring(spring) {}

    int duration() const override { return -1; }

protected:
    void updateCurrentTime(int /*milliseconds*/) override { m_spring.advance(); }

private:
    Spring& m_spring;
};

Spring::Spring(QObject* parent)
    : QObject(parent)
    , m_frames(new Frames(*this)) {}

Spring::~Spring() = default;

void Spring::setTarget(double target) {
    if (m_hasTarget && target == m_target) {
        return;
    }
    const double before = value();
    const bool swing = m_hasTarget && m_animated;
    m_target = target;
    m_hasTarget = true;
    m_motion = swing ? SpringMotion{before - target, m_motion.speed} : SpringMotion{};
    if (swing && m_frames->state() != QAbstractAnimation::Running) {
        m_sinceFrame.start();
        m_frames->start();
    }
    emit targetChanged();
    emit valueChanged();
}

void Spring::advance() {
    if (!m_sinceFrame.isValid()) {
        return;
    }
    const double seconds = static_cast<double>(m_sinceFrame.nsecsElapsed()) / 1e9;
    m_sinceFrame.start();
    m_motion = springAfter(seconds, m_motion, m_response, m_dampingFraction);
    if (std::abs(m_motion.stretch) < restStretch && std::abs(m_motion.speed) < restSpeed) {
        m_motion = {};
        m_frames->stop();
    }
    emit valueChanged();
}

} // namespace velmora
