#pragma once

// What the peers of velmora-scan have in common: find every file below some paths, and work on them on
// several threads.

#include <atomic>
#include <filesystem>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace velmora::bench {

inline std::vector<std::string> regularFilesBelow(std::span<char*> folders) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    for (const char* const folder : folders) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path().native());
            }
        }
    }
    return files;
}

/// A scan has as many.
constexpr int sixThreads = 6;

/// Calls `work(file)` once for each file on `count` threads and adds up what it returns.
template <typename File, typename Work>
auto sumOnThreads(int count, const std::vector<File>& files, const Work& work) {
    using Sum = decltype(work(files.front()));
    std::atomic<std::size_t> next = 0;
    std::atomic<Sum> sum = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([&] {
                Sum own = 0;
                for (std::size_t index = next++; index < files.size(); index = next++) {
                    own += work(files[index]);
                }
                sum += own;
            });
        }
    }
    return sum.load();
}

} // namespace velmora::bench
