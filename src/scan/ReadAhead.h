#pragma once

// Asks the system for what the workers will read next, in an order that suits a disk with heads. They need
// not wait for it: the disk then has many requests to choose from, and what a worker reads is on its way or
// there.

#include "records/FilePath.h"

#include <filesystem>
#include <functional>
#include <stop_token>

namespace velmora {

struct ReadAhead {
    /// Whether it pays to ask for a file and its neighbours: they lie on a slow disk and are not in memory.
    std::function<bool(const std::filesystem::path& file)> pays;

    /// Asks for what measuring a file reads, without waiting for it.
    std::function<void(const std::filesystem::path& file)> askFor;

    explicit operator bool() const { return pays && askFor; }

    /// Asks for `files`, which follow each other in scan order, in the order of their inodes: about that of
    /// their places on the disk. For none of them unless it pays for the first or the last. Ends early when
    /// `stop` is requested.
    void ask(const FilePaths& files, const std::stop_token& stop) const;
};

} // namespace velmora
