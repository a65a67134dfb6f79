// Velmora: drop audio on the window, see how long it plays.

#include "app/AppArguments.h"
#include "app/RequestedWindow.h"
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
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace velmora {

namespace {

using namespace std::chrono_literals;

constexpr int usageError = 2;

/// How long a program that the session bus has started waits for what is asked of it. The bus has the call
/// ready as a rule; one that comes later starts the program again.
constexpr auto servicePatience = 3s;

constexpr const char* usage =
    "usage: velmora [OPTION…] [PATH…]\n"
    "\n"
    "Opens the window and measures how long the audio at the paths plays.\n"
    "\n"
    "  --choose       open the panel to choose files and folders at once\n"
    "  --render DIR   write pictures of the window into DIR and quit\n"
    "  --service      wait for what the session bus asks for, as it starts the program\n"
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

/// Before the application object exists.
void prepareApplication() {
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && isBetterInSoftware()) {
        qputenv("QT_QUICK_BACKEND", "software");
    }
    if (isOnWaylandWithoutSeat()) {
        qputenv("QT_IM_MODULE", "none"); // Qt 6.4 would ask the seat for its text input, and crash
    }
    QGuiApplication::setDesktopFileName(applicationId);
    QGuiApplication::setOrganizationName(QStringLiteral("Orventa"));
    QGuiApplication::setApplicationName(QStringLiteral("Velmora"));
}

/// What the command line asks of the one instance; absent when the session bus is going to ask instead.
std::optional<LaunchRequest> requestOf(const AppArguments& arguments) {
    if (arguments.service && !arguments.choose && arguments.paths.empty()) {
        return std::nullopt;
    }
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return LaunchRequest{.paths = arguments.paths,
                         .choose = arguments.choose,
                         .activationToken = token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token};
}

int openWindow(int argc, char** argv, const AppArguments& arguments) {
    std::optional<LaunchRequest> request = requestOf(arguments); // Qt takes the token from the environment
    int status = EXIT_FAILURE;
    PrivateDirectory directory; // before the application, which starts threads
    std::atexit(&endInOrder);
    endInOrderWithoutCompositor();
    if (directory.failure()) {
        std::fprintf(stderr, "velmora: cannot make a directory in '%s': %s\n", directory.parent().c_str(),
                     directory.failure().message().c_str());
    }
    prepareApplication();
    const QGuiApplication application(argc, argv);
    QGuiApplication::setWindowIcon(windowIcon());

    SingleInstance instance;
    if (!instance.claim(request)) {
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
    RequestedWindow window;
    if (request) {
        request->activationToken.clear(); // Qt knows it
        if (!window.serve(*request)) {
            return EXIT_FAILURE;
        }
    } else {
        QTimer::singleShot(servicePatience, &application, [&] {
            if (!window.isOpen()) {
                QCoreApplication::exit(EXIT_SUCCESS);
            }
        });
    }
    QObject::connect(&instance, &SingleInstance::requested, &application, [&](const LaunchRequest& asked) {
        if (!window.serve(asked)) {
            QCoreApplication::exit(EXIT_FAILURE);
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
    return openWindow(argc, argv, arguments);
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
