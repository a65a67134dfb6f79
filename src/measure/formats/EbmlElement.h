#pragma once

// The elements that Matroska and WebM files are made of (EBML, RFC 8794): an id of one to four bytes, a size
// of one to eight, then content, which may be further elements. The leading zeros of the first byte tell how
// many bytes an id or a size takes.

#include "measure/bytes/GuardedReader.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace velmora {

struct EbmlElement {
    std::uint32_t id = 0;             ///< with the bits that tell its length, as it is written in documents
    std::int64_t content = 0;         ///< where the content begins
    std::optional<std::int64_t> size; ///< of the content; absent if the writer did not know it
};

/// The element at `at`; absent if there is none.
std::optional<EbmlElement> ebmlElementAt(GuardedReader& reader, std::int64_t at);

/// Its content as an unsigned integer or as a floating-point number of four or eight bytes; absent if it is
/// no such thing.
std::optional<std::uint64_t> ebmlInteger(GuardedReader& reader, const EbmlElement& element);
std::optional<double> ebmlNumber(GuardedReader& reader, const EbmlElement& element);

/// Calls `visit(element)` for each element in `parent`, until it returns false or an element's end is not
/// known.
template <typename Visit>
void forEachEbmlElement(GuardedReader& reader, const EbmlElement& parent, Visit visit) {
    const std::int64_t end =
        parent.content + std::min(parent.size.value_or(reader.size()), reader.size() - parent.content);
    std::int64_t at = parent.content;
    while (at < end) {
        const std::optional<EbmlElement> element = ebmlElementAt(reader, at);
        if (!element || !visit(*element) || !element->size || *element->size > end - element->content) {
            return;
        }
        at = element->content + *element->size;
    }
}

} // namespace velmora
