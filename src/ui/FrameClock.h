#pragma once

// The time that the moving scenery shows. While it runs it advances with the frames of the window: no frame,
// no work.

#include <QAbstractAnimation>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class FrameClock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool running READ running WRITE setRunning NOTIFY runningChanged)
    Q_PROPERTY(double time READ time NOTIFY timeChanged)

public:
    explicit FrameClock(QObject* parent = nullptr);
    ~FrameClock() override;

    /// Seconds since 2001-01-01 00:00 UTC, at the last frame.
    double time() const { return m_time; }

    bool running() const;
    void setRunning(bool running);

    static double now();

signals:
    void runningChanged();
    void timeChanged();

private:
    class Frames;

    void tick();

    double m_time = now();
    Frames* m_frames; // owned by this object
};

} // namespace velmora
