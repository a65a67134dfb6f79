// A drop of very many files, and a reset. Usage: bench_many_files alone|window FOLDER... Prints the seconds
// of the scan; of one in the moving window also, from the drop until after the reset, the number of frames,
// the longest time between two in milliseconds and the longest processor time of the main thread between two;
// then resident memory in megabytes before the drop, at the end of the scan and after the reset.

#include "native/Clock.h"
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
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string_view>

namespace velmora {
namespace {

using bench::seconds;

constexpr int settledMilliseconds = 1000;

double residentMegabytes() {
    std::ifstream file("/proc/self/statm");
    double all = 0;
    double resident = 0;
    file >> all >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

void runFor(int milliseconds) {
    QTimer::singleShot(milliseconds, [] { QCoreApplication::exit(); }); // `quit` would close the window
    QCoreApplication::exec();
}

/// The largest distances between two frames since it was made.
class Gaps {
public:
    void frame() {
        const double wall = seconds(CLOCK_MONOTONIC);
        const double processor = seconds(CLOCK_THREAD_CPUTIME_ID);
        if (m_frames++ > 0) {
            m_wall = std::max(m_wall, wall - m_lastWall);
            m_processor = std::max(m_processor, processor - m_lastProcessor);
        }
        m_lastWall = wall;
        m_lastProcessor = processor;
    }

    int frames() const { return m_frames; }

    double wallMilliseconds() const { return m_wall * 1000; }

    double processorMilliseconds() const { return m_processor * 1000; }

private:
    int m_frames = 0;
    double m_lastWall = 0;
    double m_lastProcessor = 0;
    double m_wall = 0;
    double m_processor = 0;
};

/// Negative when nothing in `folders` could be measured.
double secondsToScan(ScanModel& model, const Paths& folders) {
    const auto end = QObject::connect(&model, &ScanModel::phaseChanged, [](ScanModel::Phase phase) {
        if (phase != ScanModel::Phase::scanning) {
            QCoreApplication::exit(); // `quit` would close the window
        }
    });
    const double begin = seconds(CLOCK_MONOTONIC);
    model.ingest(folders);
    QCoreApplication::exec();
    QObject::disconnect(end);
    const double took = seconds(CLOCK_MONOTONIC) - begin;
    return model.phase() == ScanModel::Phase::done ? took : -1;
}

int runWithoutWindow(const Paths& folders) {
    ScanModel model;
    const double took = secondsToScan(model, folders);
    std::printf("%.3f\n", took);
    return took < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

int runInWindow(const Paths& folders) {
    ScanModel model;
    ScanView scan(model);
    test::RecordingActions actions;
    Alerts alerts;
    QQmlEngine engine;
    const std::unique_ptr<QQuickWindow> window = test::stageWindow(engine, scan, actions, alerts, true);
    window->show();
    runFor(settledMilliseconds);
    const double before = residentMegabytes();
    Gaps gaps;
    QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(), [&gaps] { gaps.frame(); });
    const double took = secondsToScan(model, folders);
    const double after = residentMegabytes();
    runFor(settledMilliseconds);
    model.reset();
    runFor(settledMilliseconds);
    std::printf("%.3f %d %.1f %.1f %.1f %.1f %.1f\n", took, gaps.frames(), gaps.wallMilliseconds(),
                gaps.processorMilliseconds(), before, after, residentMegabytes());
    return took < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace
} // namespace velmora

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const std::string_view how = argc > 2 ? argv[1] : "";
    if (how != "alone" && how != "window") {
        std::fprintf(stderr, "usage: bench_many_files alone|window FOLDER...\n");
        return 2;
    }
    velmora::Views::prepare();
    const velmora::Paths folders(argv + 2, argv + argc);
    return how == "alone" ? velmora::runWithoutWindow(folders) : velmora::runInWindow(folders);
}
