#include "ui/content/ScanState.h"

namespace velmora {

ScanState ScanState::of(const ScanModel& model) {
    const ScanSummary& summary = model.summary();
    return {
        .phase = model.phase(),
        .status = model.status(),
        .processed = model.processed(),
        .found = model.found(),
        .progress = model.progress(),
        .source = summary.source,
        .seconds = summary.seconds,
        .fileCount = summary.fileCount,
        .bytes = summary.bytes,
        .unreadable = summary.unreadable,
        .zip = model.zipState(),
    };
}

} // namespace velmora
