#pragma once

// The time that the moving scenery shows. It advances once a frame of its window, and stops while the window
// is hidden or minimised.

#include <QAbstractAnimation>
#include <QPointer>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class FrameClock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QWindow* window READ window WRITE setWindow NOTIFY windowChanged)
    Q_PROPERTY(bool animated READ animated WRITE setAnimated NOTIFY animatedChanged)
    Q_PROPERTY(double time READ time NOTIFY timeChanged)

public:
    explicit FrameClock(QObject* parent = nullptr);
    ~FrameClock() override;

    /// Seconds since 2001-01-01 00:00 UTC, at the last frame.
    double time() const { return m_time; }

    bool running() const;

    QWindow* window() const { return m_window; }

    void setWindow(QWindow* window);

    /// False where the user wants less motion: the time stops.
    bool animated() const { return m_animated; }

    void setAnimated(bool animated);

    static double now();

signals:
    void windowChanged();
    void animatedChanged();
    void timeChanged();

private:
    class Frames;

    void tick();
    void startOrStop();

    QPointer<QWindow> m_window;
    bool m_animated = true;
    double m_time = now();
    Frames* m_frames; // owned by this object
};

} // namespace velmora
