// Single steps of a scan: measuring a file of each kind, ordering, handing results to the main thread. Usage:
// bench_micro FOLDER [GOOGLE BENCHMARK OPTION...], with one or more files of each kind in FOLDER.

#include "gather/ScanOrder.h"
#include "measure/MeasurementPipeline.h"
#include "scan/MainThreadQueue.h"
#include "system/Paths.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QObject>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using velmora::Collector::measure;
using velmora::Collector::sortScanOrder;

/// The bytes per second it reports are those of the file's size: a rate of reading where all of it is read.
void measureFile(benchmark::State& state, const std::filesystem::path& file) {
    std::int64_t bytes = 0;
    for ([[maybe_unused]] auto round : state) {
        const velmora::Measured measured = measure(file);
        if (measured.seconds < 0) {
            state.SkipWithError("not measured");
        }
        bytes += measured.bytes;
    }
    state.SetBytesProcessed(bytes);
}

/// 20 tracks in a folder, as they lie on disks: neither sorted nor far from it.
velmora::FilePaths unsortedPaths(int count) {
    velmora::FilePaths paths;
    for (int i = 0; i < count; ++i) {
        const int folder = (i / 20 * 7) % (count / 20);
        const velmora::FilePath file = "/music/Artist " + std::to_string(folder) + "/Album/" +
                                       std::to_string(i * 13 % 20) + " - Song.flac";
        paths.push_back(paths.empty() ? file : file.sharing(paths.back()));
    }
    return paths;
}

void orderFiles(benchmark::State& state) {
    const auto paths = unsortedPaths(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto round : state) {
        auto files = paths;
        sortScanOrder(files, {});
        benchmark::DoNotOptimize(files.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

constexpr int producers = 6;
constexpr int itemsOfEach = 20'000;

/// Hands `task` over by the event queue of Qt, which scans do not use.
template <typename Task>
void post(QObject& receiver, Task task) {
    QMetaObject::invokeMethod(&receiver, std::move(task), Qt::QueuedConnection);
}

void handOver(benchmark::State& state) {
    velmora::MainThreadQueue queue;
    std::int64_t done = 0;
    for ([[maybe_unused]] auto round : state) {
        queue.post([&done] { ++done; });
        queue.runPending();
    }
    state.SetItemsProcessed(done);
}

/// Runs `produce(item)` for every item on six threads, and the event loop until `done` counts all of them.
void runProducers(const std::function<void(int)>& produce, const int& done) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < producers; ++i) {
        threads.emplace_back([&] {
            for (int item = 0; item < itemsOfEach; ++item) {
                produce(item);
            }
        });
    }
    while (done < producers * itemsOfEach) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

/// One task for each item.
void handOverSingly(benchmark::State& state) {
    QObject receiver;
    for ([[maybe_unused]] auto round : state) {
        int done = 0;
        runProducers([&](int) { post(receiver, [&done] { ++done; }); }, done);
    }
    state.SetItemsProcessed(state.iterations() * producers * itemsOfEach);
}

/// One task at most is under way; it takes all items that are ready by then.
void handOverInBatches(benchmark::State& state) {
    QObject receiver;
    std::mutex lock;
    std::vector<int> batch;
    for ([[maybe_unused]] auto round : state) {
        int done = 0;
        const auto takeBatch = [&] {
            const std::lock_guard guard(lock);
            done += static_cast<int>(std::exchange(batch, {}).size());
        };
        const auto produce = [&](int item) {
            bool first = false;
            {
                const std::lock_guard guard(lock);
                first = batch.empty();
                batch.push_back(item);
            }
            if (first) {
                post(receiver, takeBatch);
            }
        };
        runProducers(produce, done);
    }
    state.SetItemsProcessed(state.iterations() * producers * itemsOfEach);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_micro FOLDER [OPTION...]\n");
        return 2;
    }
    velmora::Paths files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files) {
        benchmark::RegisterBenchmark(file.filename().c_str(), measureFile, file)->UseRealTime();
    }
    benchmark::RegisterBenchmark("order", orderFiles)
        ->Arg(1'000)
        ->Arg(100'000)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("hand over", handOver);
    benchmark::RegisterBenchmark("six threads, one by one, by Qt", handOverSingly)->UseRealTime();
    benchmark::RegisterBenchmark("six threads, in batches, by Qt", handOverInBatches)->UseRealTime();
    benchmark::RunSpecifiedBenchmarks();
}
