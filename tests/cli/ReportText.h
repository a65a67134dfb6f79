#pragma once

// The reports as whole texts.

#include "cli/CsvReport.h"
#include "cli/FoldersReport.h"
#include "cli/JsonReport.h"
#include "cli/Report.h"
#include "cli/Sink.h"

#include <string>

namespace velmora {

inline std::string collected(const Text& text) {
    std::string all;
    text([&](std::string_view part) { all += part; });
    return all;
}

inline std::string filesReport(const ScanDetails& details, double speed = 1) {
    return collected([&](const Sink& out) { filesReport(out, details, speed); });
}

inline std::string csvReport(const ScanDetails& details, double speed) {
    return collected([&](const Sink& out) { csvReport(out, details, speed); });
}

inline std::string foldersReport(const ScanDetails& details, const PathList& dropped, int depth,
                                 double speed) {
    return collected([&](const Sink& out) { foldersReport(out, details, dropped, depth, speed); });
}

inline std::string findingsReport(const ScanDetails& details, const CheckResults& checks) {
    return collected([&](const Sink& out) { findingsReport(out, details, checks); });
}

inline std::string jsonReport(const std::string& status, const ScanSummary& summary,
                              const ScanDetails& details, const CheckResults& checks = {}, double speed = 1) {
    return collected([&](const Sink& out) { jsonReport(out, status, summary, details, checks, speed); });
}

} // namespace velmora
