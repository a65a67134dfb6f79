// What a frame of the moving window costs. Usage: bench_window_frame FRAMES. Prints milliseconds of processor
// time a frame. Platform, back end and scale are those of Qt's environment variables.

#include "tests/staged/RecordingActions.h"
#include "tests/staged/StagedWindow.h"
#include "ui/Views.h"
#include "ui/content/ScanView.h"
#include "ui/window/Alerts.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace velmora {
namespace {

constexpr int warmUp = 30; // frames until everything that is painted once is painted

double millisecondsPerFrame(int frames) {
    QQmlEngine engine;
    ScanView scan;
    scan.show({.phase = ScanModel::Phase::scanning,
               .status = "MEASURING",
               .processed = 31,
               .found = 48,
               .progress = 31.0 / 48,
               .source = "LIVE SET 2026"});
    test::RecordingActions actions;
    Alerts alerts;
    const std::unique_ptr<QQuickWindow> window = test::stageWindow(engine, scan, actions, alerts, true);
    int frame = 0;
    std::clock_t from = 0;
    QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(), [&] {
        if (++frame == warmUp) {
            from = std::clock();
        }
        if (frame == warmUp + frames) {
            QCoreApplication::quit();
        }
    });
    window->show();
    QCoreApplication::exec();
    return static_cast<double>(std::clock() - from) / CLOCKS_PER_SEC * 1000 / frames;
}

} // namespace
} // namespace velmora

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_window_frame FRAMES\n");
        return 2;
    }
    velmora::Views::prepare();
    std::printf("%.4f\n", velmora::millisecondsPerFrame(std::max(1, std::atoi(argv[1]))));
}
