// What the visible, moving window costs a scan. Usage: bench_windowed_scan ROUNDS FOLDER... Prints the median
// seconds of a scan without a window, then the median of the rounds' ratios of a scan in the window to it.

#include "scan/ScanModel.h"
#include "system/Paths.h"
#include "tests/staged/RecordingActions.h"
#include "tests/staged/StagedWindow.h"
#include "ui/Views.h"
#include "ui/content/ScanView.h"
#include "ui/window/Alerts.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

namespace velmora {
namespace {

using Seconds = std::chrono::duration<double>;

/// Absent when nothing in `folders` could be measured.
std::optional<double> secondsToScan(ScanModel& model, const Paths& folders) {
    QObject::connect(&model, &ScanModel::phaseChanged, &model, [](ScanModel::Phase phase) {
        if (phase != ScanModel::Phase::scanning) {
            QCoreApplication::exit(); // `quit` would close the window
        }
    });
    const auto begin = std::chrono::steady_clock::now();
    model.ingest(folders);
    QCoreApplication::exec();
    const Seconds took = std::chrono::steady_clock::now() - begin;
    return model.phase() == ScanModel::Phase::done ? std::optional(took.count()) : std::nullopt;
}

std::optional<double> secondsWithoutWindow(const Paths& folders) {
    ScanModel model;
    return secondsToScan(model, folders);
}

std::optional<double> secondsInWindow(const Paths& folders) {
    ScanModel model;
    ScanView scan(model);
    test::RecordingActions actions;
    Alerts alerts;
    QQmlEngine engine;
    const std::unique_ptr<QQuickWindow> window = test::stageWindow(engine, scan, actions, alerts, true);
    int frames = 10; // by then it stands and moves
    const auto settled = QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(), [&frames] {
        if (--frames == 0) {
            QCoreApplication::exit(); // `quit` would close the window
        }
    });
    window->show();
    QCoreApplication::exec();
    QObject::disconnect(settled);
    return secondsToScan(model, folders);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

int run(int rounds, const Paths& folders) {
    std::vector<double> without;
    std::vector<double> ratios;
    for (int i = 0; i < rounds; ++i) {
        const auto seconds = secondsWithoutWindow(folders);
        const auto inWindow = secondsInWindow(folders);
        if (!seconds || !inWindow) {
            std::fprintf(stderr, "nothing could be measured\n");
            return EXIT_FAILURE;
        }
        without.push_back(*seconds);
        ratios.push_back(*inWindow / *seconds);
    }
    std::printf("%.6f %.4f\n", median(without), median(ratios));
    return EXIT_SUCCESS;
}

} // namespace
} // namespace velmora

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_windowed_scan ROUNDS FOLDER...\n");
        return 2;
    }
    velmora::Views::prepare();
    return velmora::run(std::max(1, std::atoi(argv[1])), {argv + 2, argv + argc});
}
