#pragma once

// The playing time of Sound Designer II (.sd2): bare samples, described by three texts in the resource fork,
// which is a second file beside it here, "._name", wrapped as AppleDouble (RFC 1740) or bare. It is the only
// format for which a second file is opened.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace velmora {

/// Times the `dataBytes` of samples at `name`, by the fork beside it. Absent if there is none or it does not
/// describe them.
std::optional<Timing> sd2Duration(const std::filesystem::path& name, std::int64_t dataBytes,
                                  const std::stop_token& stop);

/// The same by a fork at hand.
std::optional<Timing> sd2Duration(GuardedReader& fork, std::int64_t dataBytes);

} // namespace velmora
