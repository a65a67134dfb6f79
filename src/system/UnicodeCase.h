#pragma once

// Upper and lower case by Unicode's own rules, the same under every locale of the user.

#include <string>
#include <string_view>

namespace velmora {

/// `text` (UTF-8) in lower case. Bytes that are not UTF-8 stay as they are, so different names stay
/// different.
std::string lowerCased(std::string_view text);

/// `text` (UTF-8) in upper case; "ß" becomes "SS". Bytes that are not UTF-8 stay as they are.
std::string upperCased(std::string_view text);

} // namespace velmora
