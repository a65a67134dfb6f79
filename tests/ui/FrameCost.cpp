// Measures what the moving window costs: velmora_frame_cost [FRAMES]
// The platform, back end and scale are those of Qt's environment variables; by default no display, no GPU.

#include "ui/Alerts.h"
#include "ui/RecordingActions.h"
#include "ui/ScanView.h"
#include "ui/StagedWindow.h"
#include "ui/Views.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace velmora::test {
namespace {

std::string residentMemory() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line) && !line.starts_with("VmRSS")) {
    }
    return line;
}

int measure(int frames, const QElapsedTimer& sinceStart) {
    QQmlEngine engine;
    ScanView scan;
    scan.show({.phase = ScanModel::Phase::scanning,
               .status = "MEASURING",
               .processed = 31,
               .found = 48,
               .progress = 31.0 / 48,
               .source = "LIVE SET 2026"});
    RecordingActions actions;
    Alerts alerts;
    const std::unique_ptr<QQuickWindow> window = stageWindow(engine, scan, actions, alerts, true);
    constexpr int warmUp = 30;
    int frame = 0;
    std::clock_t from = 0;
    QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(), [&] {
        if (frame == 0) {
            std::cout << "first frame after " << sinceStart.elapsed() << " ms\n";
        }
        if (frame == warmUp) {
            from = std::clock();
        }
        if (++frame == warmUp + frames) {
            QGuiApplication::quit();
        }
    });
    window->show();
    QGuiApplication::exec();
    const double seconds = static_cast<double>(std::clock() - from) / CLOCKS_PER_SEC;
    std::cout << "CPU per frame " << seconds * 1000 / std::max(1, frame - warmUp - 1) << " ms\n"
              << residentMemory() << '\n';
    return 0;
}

} // namespace
} // namespace velmora::test

int main(int argc, char** argv) {
    QElapsedTimer sinceStart;
    sinceStart.start();
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    ::setenv("QT_QUICK_BACKEND", "software", 0);
    const QGuiApplication application(argc, argv);
    velmora::Views::prepare();
    return velmora::test::measure(argc > 1 ? std::atoi(argv[1]) : 300, sinceStart);
}
