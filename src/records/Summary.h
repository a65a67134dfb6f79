#pragma once

// Adds up what a scan has measured.

#include "records/Records.h"

#include <filesystem>
#include <vector>

namespace velmora {

/// The tallies of `files`, which stand in scan order: every field of the summary but `source`, `dropped`,
/// `roots`. `unreadable` counts the unmeasured among `files` alone.
ScanSummary summarize(const std::vector<Measured>& files);

} // namespace velmora
