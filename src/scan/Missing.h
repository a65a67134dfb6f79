#pragma once

// What is missing in the total, whatever it is: one form for folders, archives and files.

#include "records/Records.h"
#include "scan/ScanDetails.h"

#include <filesystem>
#include <optional>
#include <string>

namespace velmora {

struct Missing {
    std::filesystem::path path; ///< as it was found
    std::string why;            ///< in words, without a full stop
};

Missing missing(const UnreadableFolder& folder);
Missing missing(const SkippedArchive& archive);

/// Of a file that was not measured.
Missing missing(const Measured& file);

/// What is missing first: folders before archives before files. Absent when nothing is.
std::optional<Missing> firstMissing(const ScanDetails& details);

} // namespace velmora
