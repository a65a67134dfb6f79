// The details of very many files in the window. Usage: bench_many_rows FOLDER... (whole paths). Scans the
// folders, then opens the lists of the details, sorts, searches and copies them. Prints a line a step: the
// seconds until it is seen, a tab, the longest processor time of the main thread between two turns of its
// event loop in milliseconds, a tab, the step. The last line holds resident memory in megabytes: before the
// scan, a tab, at the peak.

#include "native/Clock.h"
#include "scan/ScanModel.h"
#include "system/Paths.h"
#include "tests/staged/RecordingActions.h"
#include "tests/staged/StagedWindow.h"
#include "ui/Views.h"
#include "ui/content/ScanView.h"
#include "ui/details/Details.h"
#include "ui/window/Alerts.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

namespace velmora {
namespace {

using bench::seconds;

constexpr int settledMilliseconds = 1000;

/// A figure of /proc/self/status, in megabytes.
double megabytes(const std::string& figure) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != figure) {
    }
    double kibibytes = 0;
    status >> kibibytes;
    return kibibytes * 1024 / 1e6;
}

/// Carries out steps, and prints what each took.
class Steps {
public:
    Steps() {
        QObject::connect(&m_turn, &QTimer::timeout, &m_turn, [this] { look(); });
        m_turn.start();
    }

    /// `begin` starts it; it ends with `end`, a signal of `sender`, when `hasEnded` says so.
    template <typename Sender, typename Signal>
    void run(
        const char* name, const std::function<void()>& begin, Sender* sender, Signal end,
        const std::function<bool()>& hasEnded = [] { return true; }) {
        const auto connection =
            QObject::connect(sender, end, &m_turn, [&, this] { m_hasEnded = m_hasEnded || hasEnded(); });
        const double start = seconds(CLOCK_MONOTONIC);
        m_last = seconds(CLOCK_THREAD_CPUTIME_ID);
        m_longest = 0;
        m_hasEnded = false;
        begin();
        while (!m_hasEnded) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        const double took = seconds(CLOCK_MONOTONIC) - start;
        QObject::disconnect(connection);
        QTimer::singleShot(settledMilliseconds, [] { QCoreApplication::exit(); }); // its frames are drawn
        QCoreApplication::exec();
        look();
        std::printf("%.3f\t%.1f\t%s\n", took, m_longest * 1000, name);
        std::fflush(stdout);
    }

private:
    void look() {
        const double now = seconds(CLOCK_THREAD_CPUTIME_ID);
        m_longest = std::max(m_longest, now - m_last);
        m_last = now;
    }

    QTimer m_turn; // fires in every turn
    double m_last = 0;
    double m_longest = 0;
    bool m_hasEnded = false;
};

int run(const Paths& folders) {
    ScanModel model;
    ScanView scan(model);
    Details details(model);
    test::RecordingActions actions;
    Alerts alerts;
    QQmlEngine engine;
    const std::unique_ptr<QQuickWindow> window =
        test::stageWindow(engine, scan, actions, alerts, false, &details);
    window->show();
    QTimer::singleShot(settledMilliseconds, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    const double before = megabytes("VmRSS:");

    Steps steps;
    steps.run(
        "scan", [&] { model.ingest(folders); }, &model, &ScanModel::statusChanged,
        [&] { return model.phase() != ScanModel::Phase::scanning; });
    RowsModel& rows = *details.rows();
    const auto rearranged = [&](const char* name, const std::function<void()>& begin) {
        steps.run(name, begin, &rows, &RowsModel::rearranged);
    };
    rearranged("open the list of files", [&] { details.openOn(Details::Files); });
    rearranged("sort by name", [&] { rows.sortBy(0); });
    rearranged("sort by folder", [&] { rows.sortBy(1); });
    rearranged("sort by length", [&] { rows.sortBy(2); });
    rearranged("sort by size", [&] { rows.sortBy(3); });
    rearranged("search", [&] { rows.setSearch("track 99"); });
    rearranged("end the search", [&] { rows.setSearch(""); });
    steps.run(
        "select all", [&] { rows.selectAll(); }, &rows, &RowsModel::selectionChanged);
    steps.run(
        "copy", [&] { rows.copy(); }, &rows, &RowsModel::copied);
    rearranged("open the list of folders", [&] {
        details.close();
        details.openOn(Details::Folders);
    });
    std::printf("%.0f\t%.0f\n", before, megabytes("VmHWM:"));
    return model.phase() == ScanModel::Phase::done ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace velmora

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    velmora::Views::prepare();
    return velmora::run({argv + 1, argv + argc});
}
