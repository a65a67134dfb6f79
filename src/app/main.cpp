// Velmora: drop audio on the window, see how long it plays.

#include "app/AppArguments.h"
#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "app/desktop/CompositorLoss.h"
#include "app/desktop/GraphicsProbe.h"
#include "app/desktop/SingleInstance.h"
#include "app/desktop/WaylandSeat.h"
#include "screenshots/Screenshots.h"
#include "system/AddressSpace.h"
#include "system/EndingSignals.h"
#include "system/ForcedEnd.h"
#include "system/PrivateDirectory.h"
#include "ui/Views.h"
#include "update/UpdateChecker.h"

#include <QGuiApplication>
#include <QIcon>
#include <QSocketNotifier>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace velmora {

namespace {

constexpr int usageError = 2;

constexpr const char* usage = "usage: velmora [OPTION…] [PATH…]\n"
                              "\n"
                              "Opens the window and measures how long the audio at the paths plays.\n"
                              "\n"
                              "  --render DIR   write pictures of the window into DIR and quit\n"
                              "  -V, --version  print the version\n"
                              "  -h, --help     print this\n";

int render(int argc, char** argv, const std::filesystem::path& into) {
    Screenshots::prepareEnvironment();
    const QGuiApplication application(argc, argv);
    Views::prepare();
    Screenshots::render(into);
    return EXIT_SUCCESS;
}

/// What window managers show for the window; a Wayland compositor takes the icon of the desktop file.
QIcon windowIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48, 64, 128}) {
        icon.addFile(QStringLiteral(":/velmora/icon/%1.png").arg(size), {size, size});
    }
    return icon;
}

/// Called when the program exits. In order, its private directory has gone by then; but Qt exits at once when
/// the X server has ended.
void endInOrder() {
    if (!PrivateDirectory::present().empty()) {
        endNow(EXIT_FAILURE);
    }
}

int openWindow(int argc, char** argv, const Paths& paths) {
    int status = EXIT_FAILURE;
    PrivateDirectory directory; // before the application, which starts threads
    std::atexit(&endInOrder);
    endInOrderWithoutCompositor();
    if (directory.failure()) {
        std::fprintf(stderr, "velmora: cannot make a directory in '%s': %s\n", directory.parent().c_str(),
                     directory.failure().message().c_str());
    }
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && isBetterInSoftware()) {
        qputenv("QT_QUICK_BACKEND", "software");
    }
    if (isOnWaylandWithoutSeat()) {
        qputenv("QT_IM_MODULE", "none"); // Qt 6.4 would ask the seat for its text input, and crash
    }
    QGuiApplication::setDesktopFileName(applicationId);
    QGuiApplication::setOrganizationName(QStringLiteral("Orventa"));
    QGuiApplication::setApplicationName(QStringLiteral("Velmora"));
    const QGuiApplication application(argc, argv);
    QGuiApplication::setWindowIcon(windowIcon());

    SingleInstance instance;
    if (!instance.claim(paths)) {
        return EXIT_SUCCESS;
    }
    EndingSignals endingSignals; // longer than the window, which has to clean up
    const QSocketNotifier endingNotifier(endingSignals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&endingNotifier, &QSocketNotifier::activated, &application, [&] {
        endingSignals.take();
        QCoreApplication::exit(EXIT_SUCCESS);
    });
    // When the application has gone everything is in order. Qt would then wait for a name that is still being
    // resolved, which can take 20 seconds.
    QObject::connect(&application, &QObject::destroyed, [&] {
        directory.remove();
        endNow(status);
    });
    Views::prepare();
    AppDelegate delegate;
    delegate.open(paths);
    AppWindow window(delegate);
    if (!window.isShown()) {
        return EXIT_FAILURE;
    }
    QObject::connect(&instance, &SingleInstance::requested, &window,
                     [&](const Paths& requested, const QByteArray& activationToken) {
                         window.raise(activationToken);
                         if (!requested.empty()) {
                             delegate.open(requested);
                         }
                     });
    status = QGuiApplication::exec();
    instance.giveUp(); // from here on a start opens a window of its own
    endSoon(endingSignals.descriptor(), status);
    return status;
}

int run(int argc, char** argv) {
    const AppArguments arguments = readArguments({argv + std::min(argc, 1), argv + argc});
    if (arguments.renderInto) {
        return render(argc, argv, *arguments.renderInto);
    }
    if (arguments.help) {
        return std::fputs(usage, stdout) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    if (arguments.version) {
        const QString version = UpdateChecker::currentVersion();
        return std::printf("velmora %s\n", qPrintable(version)) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    if (!arguments.error.empty()) {
        std::fprintf(stderr, "velmora: %s\nvelmora: 'velmora --help' tells more\n", arguments.error.c_str());
        return usageError;
    }
    return openWindow(argc, argv, arguments.paths);
}

} // namespace

} // namespace velmora

int main(int argc, char** argv) {
    if (argc == 2 && std::string_view(argv[1]) == velmora::probeArgument) {
        return velmora::probeGraphics(argc, argv);
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file that would grow beyond the limit is an error of the write
    velmora::saveAddressSpace();
    return velmora::run(argc, argv);
}
