#pragma once

// The two texts that window and terminal write about a scan.

#include "records/PathList.h"
#include "records/Records.h"

#include <functional>
#include <string>
#include <string_view>

namespace velmora {

/// The total in two lines, without a final line feed; divided by `speed`, which is positive.
std::string totalText(const ScanSummary& summary, double speed);

/// Hands out the names of `files` in parts: a line each, without a final line feed.
void eachName(const PathList& files, const std::function<void(std::string_view part)>& out);

} // namespace velmora
