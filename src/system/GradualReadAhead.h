#pragma once

// Has the system read a file that is needed soon into its cache, a piece at a time, while this program waits
// for something else. What is asked for all at once keeps a slow disk from everything else.

#include "system/RegularFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace velmora {

class GradualReadAhead {
public:
    /// Bytes that a step asks for. With a step every 5 ms that is 200 MB a second, more than a rotating disk
    /// or a network of 1 Gbit/s gives.
    static constexpr std::int64_t stepBytes = std::int64_t{1} << 20;

    /// Bytes that are asked for in all: so much a later reader has to wait for before the rest is under way.
    static constexpr std::int64_t maxBytes = std::int64_t{256} << 20;

    /// Of no file.
    GradualReadAhead() = default;

    /// Of the file at `path`; of none where there is no regular file that can be opened.
    explicit GradualReadAhead(const std::filesystem::path& path);

    /// Asks for the next piece, and does not wait for it. Nothing happens after the last.
    void step();

private:
    std::optional<RegularFile> m_file; // until all was asked for
    std::int64_t m_asked = 0;
};

} // namespace velmora
