#pragma once

// The three standard descriptors, whatever the caller made of them.

#include "cli/Sink.h"

#include <string_view>

namespace velmora {

/// Opens the null device for each of the descriptors 0, 1 and 2 that is closed, so that no file of ours ever
/// gets its number. What is then written to standard output fails, as it would have on the closed one.
void reserveStandardDescriptors();

/// Writes the whole `text` to `descriptor`. 0, or the errno of the failure.
int writeText(int descriptor, std::string_view text) noexcept;

/// Writes "velmora-scan: ", `message` and a line feed to standard error.
void complain(std::string_view message) noexcept;

/// Writes `text` to standard output as it is made, to a terminal without what would act on it (names hold any
/// bytes); complains and returns false when that fails, and has no more of it made.
bool writeOutput(const Text& text);

} // namespace velmora
