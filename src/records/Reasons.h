#pragma once

// Why something that was found is missing in the total: one list for files and archives, with the words in
// which every view, report and message says it.

#include <cstdint>
#include <string_view>

namespace velmora {

enum class Reason : std::uint8_t {
    // A file or an archive.
    permissionDenied,
    gone,         ///< it was there when its folder was read, or is a link to nothing
    notRegular,   ///< a folder, a FIFO, a socket or a device
    empty,        ///< it holds no byte
    cannotBeRead, ///< the system says no more, or the disk failed
    stopped,      ///< the scan was given up before its turn came or while it was looked at

    // A file.
    noFrames,      ///< nothing in it plays, or no audio was found in all of it
    notAudio,      ///< it is something else: a playlist, a picture, a script
    cutOff,        ///< it ends inside the header of its format
    notUnderstood, ///< its format is known; its content is damaged or in a form that no reader knows
    searchEnded,   ///< no audio stands where it is looked for: the search has its bounds
    tooShort,      ///< it plays for a thousandth of a second or less

    // An archive.
    encrypted,
    damaged,
    noRoom,      ///< what is in it does not fit on the disk of the temporary directory
    noTool,      ///< it is no archive, or of a kind that no installed tool unpacks
    toolFailed,  ///< the tool was killed, refused to work, or gave no reason that is one
    tooDeep,     ///< it lies in too many other archives
    noDirectory, ///< there is no temporary directory to unpack it into
};

/// What is said of it after a colon, without a full stop: "archive is encrypted".
std::string_view wordsFor(Reason reason);

/// Why a file could not be opened, where RegularFile::open set errno to `error`.
Reason reasonOfOpening(int error);

} // namespace velmora
