#include "records/Finding.h"

namespace velmora {

std::string_view nameOf(FindingKind kind) {
    switch (kind) {
    case FindingKind::truncated:
        return "truncated";
    case FindingKind::longer:
        return "longer";
    case FindingKind::offset:
        return "offset";
    case FindingKind::damaged:
        return "damaged";
    case FindingKind::foreign:
        return "foreign";
    case FindingKind::trailing:
        return "trailing";
    }
    return {};
}

std::string_view meaningOf(FindingKind kind) {
    switch (kind) {
    case FindingKind::truncated:
        return "what is stated goes on beyond the end of the file";
    case FindingKind::longer:
        return "there is more audio than is stated";
    case FindingKind::offset:
        return "the clock does not start at 0";
    case FindingKind::damaged:
        return "frames do not hold their checksums, or are lost";
    case FindingKind::foreign:
        return "the content is of another format than the name says";
    case FindingKind::trailing:
        return "over 64 KiB after the audio are neither audio nor a tag";
    }
    return {};
}

} // namespace velmora
