#pragma once

// What a header reader reads from: bytes that can be had from any position, each read paid for. The readers
// know nothing of files, so the same code times a file, a buffer of a fuzzer, and a test's bytes with every
// read counted.

#include "system/RegularFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace velmora {

struct ByteSource {
    std::int64_t size = 0; ///< in bytes, never negative

    /// Reads as RegularFile::readAt does.
    std::function<std::optional<std::size_t>(std::int64_t offset, std::span<std::uint8_t> buffer)> readAt;

    /// Of the file that the bytes stand in, for another process to read; -1 if there is none.
    int descriptor = -1;

    /// Told how many bytes another process read through `descriptor`, and whether a read failed; may be
    /// empty.
    std::function<void(std::int64_t bytes, bool hasFailed)> noteReads = {};

    /// Fills all of `buffer` from byte `offset`. False after a read error, or when the bytes end before.
    bool fill(std::int64_t offset, std::span<std::uint8_t> buffer) const {
        return readAt(offset, buffer) == buffer.size();
    }
};

/// The bytes of `file`, which must outlive the source.
inline ByteSource sourceOf(const RegularFile& file) {
    return {
        file.size(),
        [&file](std::int64_t offset, std::span<std::uint8_t> buffer) { return file.readAt(offset, buffer); },
        file.descriptor()};
}

/// `bytes` themselves, which must outlive the source.
inline ByteSource sourceOf(std::span<const std::uint8_t> bytes) {
    const auto read = [bytes](std::int64_t offset,
                              std::span<std::uint8_t> buffer) -> std::optional<std::size_t> {
        if (offset < 0) {
            return std::nullopt;
        }
        const auto rest = bytes.subspan(std::min(static_cast<std::size_t>(offset), bytes.size()));
        const auto taken = rest.first(std::min(rest.size(), buffer.size()));
        std::ranges::copy(taken, buffer.begin());
        return taken.size();
    };
    return {static_cast<std::int64_t>(bytes.size()), read};
}

} // namespace velmora
