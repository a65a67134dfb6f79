#pragma once

// A value that follows its target like a mass on a damped spring. It may overshoot. When the target changes
// while it moves, it keeps its speed.

#include <QElapsedTimer>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace velmora {

/// How far a spring is stretched and how fast that changes, per second.
struct SpringMotion {
    double stretch = 0;
    double speed = 0;
};

/// The motion `seconds` after `start`, on a spring whose undamped period is `response` seconds.
/// `dampingFraction` is above 0 and below 1.
SpringMotion springAfter(double seconds, const SpringMotion& start, double response, double dampingFraction);

class Spring : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double target READ target WRITE setTarget NOTIFY targetChanged)
    Q_PROPERTY(double value READ value NOTIFY valueChanged)
    Q_PROPERTY(double response MEMBER m_response NOTIFY settingsChanged)
    Q_PROPERTY(double dampingFraction MEMBER m_dampingFraction NOTIFY settingsChanged)
    Q_PROPERTY(bool animated MEMBER m_animated NOTIFY settingsChanged)

public:
    explicit Spring(QObject* parent = nullptr);
    ~Spring() override;

    double target() const { return m_target; }

    double value() const { return m_target + m_motion.stretch; }

    /// The value jumps to the first target and swings to every later one; it always jumps while `animated` is
    /// false.
    void setTarget(double target);

signals:
    void targetChanged();
    void valueChanged();
    void settingsChanged();

private:
    class Frames;

    void advance();

    double m_response = 0.35; ///< seconds
    double m_dampingFraction = 0.6;
    bool m_animated = true;
    bool m_hasTarget = false;
    double m_target = 0;
    SpringMotion m_motion;
    QElapsedTimer m_sinceFrame;
    Frames* m_frames; // owned by this object
};

} // namespace velmora
