#pragma once

// A desktop for one test, as a user finds it after logging in: a display with a window manager, a session bus
// with the service for screen readers, folders. Nothing of the user who runs the test is touched.

#include "tests/support/Files.h"
#include "tests/window/Process.h"

#include <QDBusConnection>
#include <QPoint>
#include <QProcessEnvironment>
#include <QString>

#include <memory>

namespace velmora::test {

enum class Display : std::uint8_t {
    x11,
    smallX11, ///< a screen of 1024 x 700
    wayland,
    small, ///< Wayland on a screen smaller than the window, and without pointer and keyboard
};

enum class Bus : std::uint8_t { present, absent };

/// Its destructor ends all its programs.
class Desktop {
public:
    explicit Desktop(Bus bus = Bus::present, Display display = Display::x11);
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop();

    /// What programs on this desktop are started with.
    const QProcessEnvironment& environment() const { return m_environment; }

    fs::path home() const { return m_folder / "home"; }

    fs::path preferences() const { return m_folder / "preferences"; }

    /// The temporary directory of programs on this desktop.
    fs::path temporary() const { return m_folder / "tmp"; }

    /// Programs placed here are found before those of the system.
    fs::path programs() const { return m_folder / "bin"; }

    /// The session bus starts what service files here name, once it is told to read them.
    fs::path services() const { return m_folder / "services"; }

    /// The session bus; not connected where it is absent.
    QDBusConnection bus() const { return QDBusConnection(m_busName); }

    /// Presses keys as xdotool names them, such as "ctrl+shift+c", one after the other.
    void press(const QString& keys) const;

    /// Types printable ASCII.
    void type(const QString& text) const;

    void click(const QPoint& place, int times = 1) const;

    /// Presses the pointer's button at `from` and moves to `to` in small steps; the button stays down.
    void pull(const QPoint& from, const QPoint& to) const;

    /// Moves the pointer, with the button as it is.
    void point(const QPoint& to) const;

    /// Releases the pointer's button.
    void letGo() const;

    /// Minimises the window that has the focus.
    void minimise() const;

    /// The title of the window that has the focus; empty if none has.
    QString activeTitle() const;

    /// The session bus ends, and with it the service for screen readers.
    void loseBus();

    /// The display ends, and with it what manages its windows.
    void loseDisplay();

    /// The text on the clipboard, asked for by another program; empty if there is none.
    QString clipboard() const;

private:
    void prepareFolders();
    void startBus();
    void startDisplay(Display display);
    void startXServer(const QString& screen);
    void startWindowManager();
    void startCompositor(const QStringList& options);
    QByteArray xdotool(const QStringList& arguments) const;

    fs::path m_folder = freshFolder();
    QProcessEnvironment m_environment;
    QString m_busName = QString::fromStdString(m_folder.native());
    std::unique_ptr<Process> m_xServer;
    std::unique_ptr<Process> m_windowManager; ///< or compositor
    std::unique_ptr<Process> m_bus;
    std::unique_ptr<Process> m_accessibility;
};

} // namespace velmora::test
