// What a busy main thread costs a scan. A window that is drawn in software keeps the main thread for up to 15
// ms of every 16 ms; the scan of many small files must hardly notice. Usage: bench_blocked_main_thread FOLDER
// ROUNDS. Prints the median seconds of a scan with a free main thread, then the medians of the rounds' ratios
// to it: main thread asleep for those 15 ms, main thread computing (which takes a core from the workers
// besides).

#include "scan/ScanModel.h"
#include "system/Paths.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr std::chrono::milliseconds framePeriod(16);
constexpr std::chrono::milliseconds frameWork(15);

enum class MainThread : std::uint8_t { free, asleep, computing };

void drawFrame(MainThread mode) {
    const Clock::time_point end = Clock::now() + frameWork;
    if (mode == MainThread::asleep) {
        std::this_thread::sleep_until(end);
    }
    while (Clock::now() < end) {
    }
}

/// Absent when nothing in `folders` could be measured.
std::optional<double> secondsToScan(const velmora::Paths& folders, MainThread mode) {
    velmora::ScanModel model;
    QTimer frames;
    QObject::connect(&frames, &QTimer::timeout, [mode] { drawFrame(mode); });
    QObject::connect(&model, &velmora::ScanModel::phaseChanged, [](velmora::ScanModel::Phase phase) {
        if (phase != velmora::ScanModel::Phase::scanning) {
            QCoreApplication::quit();
        }
    });
    if (mode != MainThread::free) {
        frames.start(framePeriod);
    }
    const Clock::time_point begin = Clock::now();
    model.ingest(folders);
    QCoreApplication::exec();
    const Seconds took = Clock::now() - begin;
    return model.phase() == velmora::ScanModel::Phase::done ? std::optional(took.count()) : std::nullopt;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_blocked_main_thread ROUNDS FOLDER...\n");
        return 2;
    }
    const velmora::Paths folders(argv + 2, argv + argc);
    const int rounds = std::max(1, std::atoi(argv[1]));
    std::vector<double> free;
    std::vector<double> asleep;
    std::vector<double> computing;
    for (int i = 0; i < rounds; ++i) {
        const auto seconds = secondsToScan(folders, MainThread::free);
        const auto whileAsleep = secondsToScan(folders, MainThread::asleep);
        const auto whileComputing = secondsToScan(folders, MainThread::computing);
        if (!seconds || !whileAsleep || !whileComputing) {
            std::fprintf(stderr, "nothing could be measured\n");
            return 1;
        }
        free.push_back(*seconds);
        asleep.push_back(*whileAsleep / *seconds);
        computing.push_back(*whileComputing / *seconds);
    }
    std::printf("%.6f %.4f %.4f\n", median(free), median(asleep), median(computing));
}
