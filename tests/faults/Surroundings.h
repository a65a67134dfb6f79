#pragma once

// A scan that an injected fault befalls.

#include "tests/cli/ScanProcess.h"
#include "tests/support/Files.h"

#include <cstdint>
#include <string>

namespace velmora::test {

inline constexpr std::uintmax_t megabyte = std::uintmax_t{1} << 20; ///< in bytes

/// The variables that let `fault` (FaultPlan.h) befall a scan, whose temporary directory is `temporary`.
Launch::Variables meeting(const std::string& fault, const fs::path& temporary = fs::temp_directory_path());

/// Waits until `process` stops (SIGSTOP); false when it ends instead.
bool stops(const ScanProcess& process);

} // namespace velmora::test
