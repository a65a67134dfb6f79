#pragma once

// Whether anything of a window can be seen. On X11 a window is told neither by the window manager nor by Qt
// that others cover it; it has to ask the X server.

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>

class QWindow;
struct xcb_connection_t;

namespace velmora {

/// Follows one window on X11: covered by others as a whole (VisibilityNotify), or hidden by the window
/// manager
/// (_NET_WM_STATE_HIDDEN, Extended Window Manager Hints 1.5), as on another workspace. Under a compositing
/// manager the X server counts every window as uncovered. On other platforms a window is never covered: they
/// stop asking it for frames. Main thread.
class WindowCover : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// Watches `window`, which becomes the parent and has been created on its display.
    explicit WindowCover(QWindow* window);
    ~WindowCover() override;

    bool covered() const { return m_obscured || m_hidden; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    void changed();

private:
    void watch();
    bool isHidden() const;
    void set(bool& which, bool value);

    xcb_connection_t* m_connection = nullptr; ///< none on other platforms; the application's
    std::uint32_t m_window = 0;
    std::uint32_t m_stateAtom = 0;
    std::uint32_t m_hiddenAtom = 0;
    bool m_obscured = false;
    bool m_hidden = false;
};

} // namespace velmora
