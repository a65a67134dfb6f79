#pragma once

// What a tool that could not unpack an archive says of it. The exit status tells least; what counts stands in
// the messages, which are in English whatever the user's language (system/ChildProcess.h).

#include "gather/ToolRunner.h"
#include "records/Reasons.h"

#include <filesystem>

namespace velmora::Collector {

/// Why `tool`, which ended without success, did not unpack its archive; noTool where it says no more than
/// that the archive is none of its own, or is not there.
Reason verdictOf(const std::filesystem::path& tool, const ToolEnd& end);

/// The one of two tools' reasons for the same archive that says more.
Reason weightier(Reason one, Reason other);

} // namespace velmora::Collector
