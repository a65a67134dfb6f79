#pragma once

// What is missing in the total, whatever it is: one form for folders, archives and files.

#include "records/Records.h"

#include <filesystem>
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

} // namespace velmora
