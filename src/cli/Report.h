#pragma once

// What velmora-scan writes about a scan that has ended.

#include "cli/JsonReport.h"
#include "cli/Options.h"
#include "cli/Sink.h"
#include "records/Records.h"
#include "scan/ScanDetails.h"

#include <memory>
#include <string>
#include <vector>

namespace velmora {

/// What a scan came to, for whoever writes of it when the scan and its model are gone.
struct ScanResult {
    std::string status;
    ScanSummary summary;
    std::shared_ptr<const ScanDetails> details;
    CheckResults checks;
};

/// What goes to standard output for `options`, with its last line feed.
Text report(const Options& options, ScanResult result);

/// A line a file in scan order: seconds with three decimals ("-" when unreadable), TAB, path. Here as in the
/// other reports lengths are divided by `speed`, which is positive.
void filesReport(const Sink& out, const ScanDetails& details, double speed);

/// The names of the measured files in scan order, a line each.
void namesReport(const Sink& out, const PathList& files);

/// A line a finding in scan order: kind, TAB, stated seconds, TAB, found seconds, with three decimals ("-"
/// when absent), TAB, path.
void findingsReport(const Sink& out, const ScanDetails& details, const CheckResults& checks);

/// A message for each folder that could not be listed, then for each skipped archive, then for each
/// unreadable file, in the order they were met, with the reason.
std::vector<std::string> problems(const ScanDetails& details);

/// A message for each file that could not be read to its end.
std::vector<std::string> checkProblems(const ScanDetails& details, const CheckResults& checks);

} // namespace velmora
