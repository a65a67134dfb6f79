#include "ui/content/ScanState.h"

#include "scan/Missing.h"
#include "system/FileName.h"

#include <optional>

namespace velmora {

namespace {

std::string missingIn(const ScanModel& model) {
    if (model.phase() != ScanModel::Phase::empty) {
        return {};
    }
    const std::optional<Missing> first = firstMissing(model.details());
    return first ? lastComponent(first->path) + ": " + first->why : "";
}

} // namespace

ScanState ScanState::of(const ScanModel& model) {
    const ScanSummary& summary = model.summary();
    return {
        .phase = model.phase(),
        .status = model.status(),
        .unpacking = model.unpacking(),
        .processed = model.processed(),
        .found = model.found(),
        .progress = model.progress(),
        .source = summary.source,
        .seconds = summary.seconds,
        .fileCount = summary.fileCount,
        .bytes = summary.bytes,
        .unreadable = summary.unreadable,
        .missing = missingIn(model),
        .zip = model.zipState(),
    };
}

} // namespace velmora
