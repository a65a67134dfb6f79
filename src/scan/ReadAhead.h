#pragma once

// Asks the system for what the workers will read next, in an order that suits the storage. They need not wait
// for it: a disk then has many requests to choose from, and what a worker reads is on its way or there.

#include "measure/WorthAsking.h"
#include "records/FilePath.h"

#include <functional>
#include <stop_token>

namespace velmora {

struct ReadAhead {
    /// What it pays to ask for of a file and its neighbours.
    std::function<WorthAsking(const FilePath& file)> worth;

    /// Asks for what measuring a file reads, without waiting for it.
    std::function<void(const FilePath& file)> askFor;

    explicit operator bool() const { return worth && askFor; }

    /// Asks for `files`, which follow each other in scan order, as much as it pays for the first or the last:
    /// for their names in this order, for their content in the order of their inodes, which is about that of
    /// their places on the disk. Ends early when `stop` is requested. Several threads; only one at a time
    /// asks for content.
    void ask(const FilePaths& files, const std::stop_token& stop) const;
};

} // namespace velmora
