#pragma once

// How a file's name is written where it must not be taken for anything else. Names are bytes and may hold
// every byte but NUL.
//
//   fieldName("a\tb\n")    -> a\tb\n             line feed, tab and backslash are written as two characters
//   terminalText("a\x1B[2J") -> a\x1B[2J         what would act on a terminal is written as \xHH, a byte each

#include <string>
#include <string_view>

namespace velmora {

/// `name` as one field of a line: line feed, tab and backslash become \n, \t and \\, all else stays.
std::string fieldName(std::string_view name);

/// `text` for a message: control characters, direction marks and bytes that are not UTF-8 become \xHH, a
/// backslash becomes \\.
std::string terminalText(std::string_view text);

/// `text` of many lines for a terminal: as `terminalText`, but tabs, backslashes and line feeds, also after a
/// carriage return, stay.
std::string terminalLines(std::string_view text);

/// `name` for a message, in single quotes; else as `terminalText`.
std::string quotedName(std::string_view name);

} // namespace velmora
