#pragma once

// Where a report goes while it is made: a report of a million files is never held as a whole.

#include <functional>
#include <string_view>

namespace velmora {

/// Takes the next part of a text, whole characters of it. What it throws ends the report.
using Sink = std::function<void(std::string_view part)>;

/// Writes a whole text to a sink.
using Text = std::function<void(const Sink& out)>;

} // namespace velmora
