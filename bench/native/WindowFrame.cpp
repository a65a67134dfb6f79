// What a frame of the window costs. Usage: bench_window_frame HOW FRAMES. Prints milliseconds of processor
// time:
//   moving    the mean of a frame with the moving scenery
//   still     the mean of a frame without it
//   resized   the mean of a frame of another size than the one before
//   targeted  the dearest frame while a drag comes and goes
// Platform, back end and scale are those of Qt's environment variables.

#include "tests/staged/RecordingActions.h"
#include "tests/staged/StagedWindow.h"
#include "ui/Views.h"
#include "ui/content/ScanView.h"
#include "ui/window/Alerts.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace velmora {
namespace {

constexpr int warmUp = 30;   // frames until everything that is painted once is painted
constexpr int hoverFor = 30; // frames, longer than the card takes to brighten

struct Cost {
    double mean = 0;    ///< milliseconds a frame
    double maximum = 0; ///< of one frame
};

/// Of `frames` frames of `window`; `next` runs after each.
Cost costOfFrames(QQuickWindow& window, int frames, const std::function<void(int frame)>& next) {
    int frame = 0;
    std::clock_t begin = 0;
    std::clock_t last = 0;
    std::clock_t dearest = 0;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] {
        const std::clock_t now = std::clock();
        ++frame;
        if (frame == warmUp) {
            begin = now;
        } else if (frame > warmUp) {
            dearest = std::max(dearest, now - last);
        }
        last = now;
        if (frame == warmUp + frames) {
            QCoreApplication::exit();
        }
        // Later: a new size is drawn at once on some platforms.
        QTimer::singleShot(0, &window, [&next, frame] { next(frame); });
    });
    window.show();
    QCoreApplication::exec();
    constexpr double tick = 1000.0 / CLOCKS_PER_SEC;
    return {static_cast<double>(last - begin) * tick / frames, static_cast<double>(dearest) * tick};
}

void hideScenery(const QQuickWindow& window) {
    for (auto* item : window.findChildren<QQuickItem*>()) {
        if (item->inherits("velmora::AnimatedItem")) {
            item->setVisible(false);
        }
    }
}

std::optional<double> milliseconds(std::string_view how, int frames) {
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
    if (how == "moving") {
        return costOfFrames(*window, frames, [](int) {}).mean;
    }
    if (how == "still") {
        hideScenery(*window);
        return costOfFrames(*window, frames, [&window](int) { window->update(); }).mean;
    }
    if (how == "resized") {
        const QSize size = window->size();
        return costOfFrames(*window, frames,
                            [&](int frame) { window->resize(size + (frame % 100) * QSize(1, 1)); })
            .mean;
    }
    if (how == "targeted") {
        return costOfFrames(*window, frames, [&](int frame) { scan.setTargeted(frame / hoverFor % 2 == 1); })
            .maximum;
    }
    return std::nullopt;
}

} // namespace
} // namespace velmora

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    velmora::Views::prepare();
    const std::optional<double> cost =
        argc == 3 ? velmora::milliseconds(argv[1], std::max(1, std::atoi(argv[2]))) : std::nullopt;
    if (!cost) {
        std::fprintf(stderr, "usage: bench_window_frame moving|still|resized|targeted FRAMES\n");
        return 2;
    }
    std::printf("%.4f\n", *cost);
}
