#include "tests/window/Desktop.h"

#include "tests/support/BusConfiguration.h"

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

QStringList place(const QPoint& point) {
    return {QString::number(point.x()), QString::number(point.y())};
}

} // namespace

Desktop::Desktop(Bus bus, Display display) {
    prepareFolders();
    if (bus == Bus::present) {
        startBus();
    } else {
        m_environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + text(m_folder / "no-bus"));
    }
    startDisplay(display);
    m_environment.insert("TMPDIR", text(temporary()));
    m_environment.insert("PATH", text(programs()) + ":" + m_environment.value("PATH"));
}

Desktop::~Desktop() {
    QDBusConnection::disconnectFromBus(m_busName);
}

void Desktop::prepareFolders() {
    const fs::path runtime = m_folder / "runtime";
    for (const fs::path& folder : {home(), preferences(), temporary(), programs(), services(), runtime}) {
        fs::create_directory(folder);
    }
    fs::permissions(runtime, fs::perms::owner_all);
    m_environment.insert("PATH", qEnvironmentVariable("PATH"));
    m_environment.insert("LANG", "C.UTF-8");
    m_environment.insert("HOME", text(home()));
    m_environment.insert("XDG_CONFIG_HOME", text(preferences()));
    m_environment.insert("XDG_RUNTIME_DIR", text(runtime));
}

void Desktop::startBus() {
    const fs::path configuration = write(m_folder / "bus.conf", busConfiguration(m_folder));
    m_bus = std::make_unique<Process>(
        "dbus-daemon", QStringList{"--nofork", "--print-address", "--config-file=" + text(configuration)},
        m_environment);
    const QString address = m_bus->nextLine();
    m_environment.insert("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_TRUE(QDBusConnection::connectToBus(address, m_busName).isConnected());
    m_accessibility = std::make_unique<Process>("/usr/libexec/at-spi-bus-launcher",
                                                QStringList{"--launch-immediately"}, m_environment);
    m_environment.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
}

void Desktop::startDisplay(Display display) {
    switch (display) {
    case Display::x11:
    case Display::smallX11:
        startXServer(display == Display::x11 ? "1280x1024" : "1024x700");
        startWindowManager();
        break;
    case Display::wayland:
        startXServer("1280x1024"); // the compositor's screen, pointer and keyboard
        startCompositor({"--backend=x11-backend.so", "--use-pixman", "--width=1280", "--height=1024",
                         "--config=" + text(write(m_folder / "weston.ini",
                                                  "[shell]\npanel-position=none\nstartup-animation="
                                                  "none\nbackground-color=0xff204060\n"))});
        break;
    case Display::small:
        startCompositor({"--backend=headless-backend.so", "--width=840", "--height=640", "--no-config"});
        break;
    }
}

void Desktop::startXServer(const QString& screen) {
    m_xServer = std::make_unique<Process>(
        "Xvfb",
        QStringList{"-displayfd", "1", "-screen", "0", screen + "x24", "-nolisten", "tcp", "-noreset"},
        m_environment);
    m_environment.insert("DISPLAY", ":" + m_xServer->nextLine());
}

void Desktop::startWindowManager() {
    m_environment.insert("QT_QPA_PLATFORM", "xcb");
    m_windowManager = std::make_unique<Process>("openbox", QStringList{}, m_environment);
    EXPECT_TRUE(comesTrue([this] { // xdotool asks the window manager for it
        return Process("xdotool", {"get_desktop"}, m_environment).wait() == 0;
    }));
}

void Desktop::startCompositor(const QStringList& options) {
    const QString socket = "velmora-test";
    m_windowManager =
        std::make_unique<Process>("weston", options + QStringList{"--socket=" + socket}, m_environment);
    m_environment.insert("WAYLAND_DISPLAY", socket);
    m_environment.insert("QT_QPA_PLATFORM", "wayland");
    EXPECT_TRUE(comesTrue([&] { return fs::exists(m_folder / "runtime" / socket.toStdString()); }));
}

QByteArray Desktop::xdotool(const QStringList& arguments) const {
    return run("xdotool", arguments, m_environment);
}

void Desktop::press(const QString& keys) const {
    xdotool(QStringList{"key"} + keys.split(' '));
}

void Desktop::type(const QString& text) const {
    xdotool({"type", text});
}

void Desktop::click(const QPoint& point, int times) const {
    xdotool(QStringList{"mousemove"} + place(point) +
            QStringList{"click", "--repeat", QString::number(times), "--delay", "50", "1"});
}

void Desktop::pull(const QPoint& from, const QPoint& to) const {
    constexpr int steps = 10;
    QStringList words =
        QStringList{"mousemove"} + place(from) + QStringList{"mousedown", "1", "sleep", "0.1"};
    for (int i = 1; i <= steps; ++i) {
        words += QStringList{"sleep", "0.02", "mousemove"} + place(from + (to - from) * i / steps);
    }
    xdotool(words);
}

void Desktop::point(const QPoint& to) const {
    xdotool(QStringList{"mousemove"} + place(to));
}

void Desktop::letGo() const {
    xdotool({"mouseup", "1"});
}

void Desktop::minimise() const {
    xdotool({"getactivewindow", "windowminimize"});
}

QString Desktop::activeTitle() const {
    Process question("xdotool", {"getactivewindow", "getwindowname"}, m_environment);
    return question.wait() == 0 ? QString::fromUtf8(question.output()).trimmed() : QString();
}

void Desktop::loseBus() {
    QDBusConnection::disconnectFromBus(m_busName);
    m_accessibility.reset();
    m_bus.reset();
}

void Desktop::loseDisplay() {
    m_windowManager.reset();
    m_xServer.reset();
}

QString Desktop::clipboard() const {
    if (m_environment.contains("WAYLAND_DISPLAY")) {
        Process question("wl-paste", {"--no-newline"}, m_environment);
        return question.wait() == 0 ? QString::fromUtf8(question.output()) : QString();
    }
    Process question("xclip", {"-out", "-selection", "clipboard", "-target", "UTF8_STRING"}, m_environment);
    return question.wait() == 0 ? QString::fromUtf8(question.output()) : QString();
}

} // namespace velmora::test
