// A scan of width 1: gathers as a scan does, then measures one file after another. Usage:
// bench_one_by_one PATH... Prints the seconds that the files play.

#include "gather/Gathering.h"
#include "measure/MeasurementPipeline.h"
#include "system/Paths.h"
#include "system/TempRegistry.h"

#include <algorithm>
#include <cstdio>

int main(int argc, char** argv) {
    const velmora::Paths paths(argv + 1, argv + argc);
    const velmora::GatherResult found = velmora::Collector::gather(paths);
    double seconds = 0;
    for (const auto& file : found.files) {
        seconds += std::max(0.0, velmora::Collector::measure(file).seconds);
    }
    velmora::TempRegistry::add(found.temps);
    velmora::TempRegistry::releaseAll();
    std::printf("%.3f\n", seconds);
}
