#pragma once

// The scan as one JSON object, with its keys in the order of the alphabet, as Qt writes them.

#include "cli/Sink.h"
#include "records/Finding.h"
#include "records/Records.h"
#include "scan/ScanDetails.h"

#include <string>
#include <vector>

namespace velmora {

/// What the check of each of a scan's files came to, by its position; empty without a check.
using CheckResults = std::vector<Checked>;

/// Numbers read back to the same value. A path is shown with U+FFFD for what is not UTF-8; `pathBytes` beside
/// it then holds its bytes in base64. `why` stands beside the path of all that is missing in the total.
/// Lengths are divided by `speed`, which is positive.
void jsonReport(const Sink& out, const std::string& status, const ScanSummary& summary,
                const ScanDetails& details, const CheckResults& checks, double speed);

} // namespace velmora
