#include "records/Reasons.h"

#include <cerrno>

namespace velmora {

std::string_view wordsFor(Reason reason) {
    switch (reason) {
    case Reason::permissionDenied:
        return "permission denied";
    case Reason::gone:
        return "not there";
    case Reason::notRegular:
        return "not a regular file";
    case Reason::empty:
        return "empty file";
    case Reason::cannotBeRead:
        return "cannot be read";
    case Reason::stopped:
        return "the scan was stopped";
    case Reason::noFrames:
        return "no audio frames";
    case Reason::notAudio:
        return "not audio";
    case Reason::cutOff:
        return "cut off inside its header";
    case Reason::notUnderstood:
        return "damaged or in an unknown form";
    case Reason::searchEnded:
        return "no audio where it is searched for";
    case Reason::tooShort:
        return "shorter than a thousandth of a second";
    case Reason::encrypted:
        return "archive is encrypted";
    case Reason::damaged:
        return "archive is damaged";
    case Reason::noRoom:
        return "not enough room";
    case Reason::noTool:
        return "no tool can unpack it";
    case Reason::toolFailed:
        return "its tool failed";
    case Reason::tooDeep:
        return "nested too deep";
    case Reason::noDirectory:
        return "no directory to unpack into";
    }
    return {};
}

Reason reasonOfOpening(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
        return Reason::permissionDenied;
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
        return Reason::gone;
    case EINVAL: // no regular file was opened
    case ENXIO:  // a socket
        return Reason::notRegular;
    default:
        return Reason::cannotBeRead;
    }
}

} // namespace velmora
