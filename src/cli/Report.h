#pragma once

// What velmora-scan writes about a scan that has ended.

#include "cli/Options.h"
#include "records/Finding.h"
#include "records/Records.h"
#include "scan/ScanModel.h"

#include <string>
#include <vector>

namespace velmora {

/// What the check of each of a scan's files came to, by its position; empty without a check.
using CheckResults = std::vector<Checked>;

/// What goes to standard output for `options`, with its last line feed.
std::string report(const Options& options, const ScanModel& model, const CheckResults& checks);

/// A line a file in scan order: seconds with three decimals ("-" when unreadable), TAB, path. Here as in the
/// other reports lengths are divided by `speed`, which is positive.
std::string filesReport(const ScanDetails& details, double speed = 1);

/// The scan as one JSON object. Numbers read back to the same value. A path is shown with U+FFFD for what is
/// not UTF-8; `pathBytes` beside it then holds its bytes in base64. `why` stands beside the path of all that
/// is missing in the total.
std::string jsonReport(const std::string& status, const ScanSummary& summary, const ScanDetails& details,
                       const CheckResults& checks = {}, double speed = 1);

/// A line a finding in scan order: kind, TAB, stated seconds, TAB, found seconds, with three decimals ("-"
/// when absent), TAB, path.
std::string findingsReport(const ScanDetails& details, const CheckResults& checks);

/// A message for each folder that could not be listed, then for each skipped archive, then for each
/// unreadable file, in the order they were met, with the reason.
std::vector<std::string> problems(const ScanDetails& details);

/// A message for each file that could not be read to its end.
std::vector<std::string> checkProblems(const ScanDetails& details, const CheckResults& checks);

} // namespace velmora
