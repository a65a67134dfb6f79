// Single steps of a scan on one thread: measuring a file of each kind, ordering, handing results to the main
// thread. Usage: bench_micro FOLDER [GOOGLE BENCHMARK OPTION...], with one or more files of each kind in
// FOLDER.

#include "gather/ScanOrder.h"
#include "measure/MeasurementPipeline.h"
#include "scan/MainThreadQueue.h"
#include "system/Paths.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <string>
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
velmora::Paths unsortedPaths(int count) {
    velmora::Paths paths;
    for (int i = 0; i < count; ++i) {
        const int folder = (i / 20 * 7) % (count / 20);
        paths.emplace_back("/music/Artist " + std::to_string(folder) + "/Album/" +
                           std::to_string(i * 13 % 20) + " - Song.flac");
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

void handOver(benchmark::State& state) {
    velmora::MainThreadQueue queue;
    std::int64_t done = 0;
    for ([[maybe_unused]] auto round : state) {
        queue.post([&done] { ++done; });
        queue.runPending();
    }
    state.SetItemsProcessed(done);
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
    benchmark::RunSpecifiedBenchmarks();
}
