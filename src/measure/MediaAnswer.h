#pragma once

// What was learnt of one file, in process: a length, or why there is none. The cases are closed, so that
// whoever looks at an answer has to say what each of them means (std::visit with `Cases`).

#include "measure/bytes/Timing.h"
#include "records/FormatName.h"

#include <string>
#include <variant>

namespace velmora {

/// It plays for so long.
struct Timed {
    Timing timing;
    FormatName format; ///< as the table of formats, or libavformat, calls it
};

/// It is audio, and nothing in it plays.
struct NothingPlays {
    FormatName format;
};

/// It is something that a general media tool would open all the same: playlist, script, picture, subtitle,
/// video alone, or nothing but a name that looks like audio.
struct NotAudio {
    std::string demuxer;      ///< that libavformat would open it with
    bool isNameAlone = false; ///< its content was searched for audio, and none was found
};

/// The search ended before an answer was found: budget spent, deadline past, or stopped.
struct OverBudget {
    FormatName format; ///< not known if not even that was recognised
};

/// Nothing could be learnt. Another tool may know more.
struct Unknown {
    FormatName format;     ///< not known if not even that was recognised
    bool isCutOff = false; ///< the file ends inside the header that was to be read next
};

using MediaAnswer = std::variant<Timed, NothingPlays, NotAudio, OverBudget, Unknown>;

/// One function a case, for std::visit: Cases{[](const Timed& answer) {...}, ...}.
template <typename... Functions>
struct Cases : Functions... {
    using Functions::operator()...;
};

template <typename... Functions>
Cases(Functions...) -> Cases<Functions...>;

} // namespace velmora
