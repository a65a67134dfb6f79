#pragma once

// How the zip export stands.

#include <filesystem>
#include <string>
#include <variant>

namespace velmora {

/// No packing has been asked for since the last scan started.
struct ZipIdle {
    bool operator==(const ZipIdle&) const = default;
};

/// `done` of `total` files are staged.
struct ZipWorking {
    int done = 0;
    int total = 0;
    bool operator==(const ZipWorking&) const = default;
};

/// The archive stands at `path`.
struct ZipDone {
    std::filesystem::path path;
    bool operator==(const ZipDone&) const = default;
};

/// Packing failed; `text` tells the user why.
struct ZipFailed {
    std::string text;
    bool operator==(const ZipFailed&) const = default;
};

using ZipState = std::variant<ZipIdle, ZipWorking, ZipDone, ZipFailed>;

} // namespace velmora
