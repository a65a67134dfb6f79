#include "system/TempRegistry.h"

#include "system/Paths.h"
#include "system/RemoveTree.h"
#include "system/TemporaryDirectory.h"
#include "system/Uuid.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <mutex>
#include <system_error>
#include <utility>

namespace velmora::TempRegistry {

namespace {

namespace fs = std::filesystem;

std::mutex lock;
Paths registered;               // guarded by `lock`
std::atomic<int> deletions = 0; // that were asked for and have not ended

} // namespace

fs::path freshPath(std::string_view kind) {
    return temporaryDirectory() / (std::string(prefix) + std::string(kind) + randomUuid());
}

bool isTemporaryDirectory(const fs::path& folder) {
    std::error_code error;
    return fs::equivalent(folder, temporaryDirectory(), error);
}

void add(const Paths& directories) {
    const std::scoped_lock guard(lock);
    registered.insert(registered.end(), directories.begin(), directories.end());
}

void releaseAll() {
    if (const std::function<void()> deleteAll = release()) {
        deleteAll();
    }
}

std::function<void()> release() {
    Paths released;
    {
        const std::scoped_lock guard(lock);
        released.swap(registered);
    }
    if (released.empty()) {
        return {};
    }
    ++deletions;
    return [released = std::move(released)] {
        std::ranges::for_each(released, removeTree);
        --deletions;
        deletions.notify_all();
    };
}

void awaitDeletions() {
    for (int left = deletions; left > 0; left = deletions) {
        deletions.wait(left);
    }
}

void sweepStale() {
    Paths stale;
    std::error_code error;
    for (fs::directory_iterator entry(temporaryDirectory(), error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().native().starts_with(prefix)) {
            stale.push_back(entry->path());
        }
    }
    for (const fs::path& item : stale) {
        removeTree(item);
    }
}

} // namespace velmora::TempRegistry
