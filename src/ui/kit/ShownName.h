#pragma once

// The names of files as the window shows them.

#include <QString>

#include <string_view>

namespace velmora {

/// `name` as it is shown: what is not UTF-8, and characters without a shape, as U+FFFD.
QString shownName(std::string_view name);

} // namespace velmora
