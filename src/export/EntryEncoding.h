#pragma once

// How an entry's name is encoded in a zip archive: marked as UTF-8, or bytes that nothing is said about.
// libzip decides by the look of a name: lead bytes followed by continuation bytes count as UTF-8, so it would
// also mark overlong forms and surrogates, and readers refuse archives with such marks.
//
//   "café" in UTF-8     -> the same, marked
//   "café" in Latin-1   -> the same, not marked
//   "\xED\xA0\x80.mp3"  -> "%ED%A0%80.mp3" (a surrogate: looks like UTF-8 and is not)

#include <zip.h>

#include <string>
#include <string_view>

namespace velmora {

/// An entry's name as libzip is to write it, with the encoding to state to libzip.
struct EncodedName {
    std::string text;
    zip_flags_t encoding = ZIP_FL_ENC_GUESS; // libzip marks no name that `encodedName` leaves to its guess
};

/// `name` encoded. Each folder of a path is encoded as it is alone.
EncodedName encodedName(std::string_view name);

} // namespace velmora
