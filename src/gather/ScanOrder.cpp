#include "gather/ScanOrder.h"

#include "system/FileName.h"
#include "system/NaturalOrder.h"
#include "system/Paths.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// Tells what came out of an archive by the directory it lies in.
class ArchiveContent {
public:
    explicit ArchiveContent(const Paths& directories) {
        std::transform(directories.begin(), directories.end(),
                       std::inserter(m_directories, m_directories.end()), &standardized);
    }

    bool holds(const fs::path& file) const {
        if (m_directories.empty()) {
            return false;
        }
        const std::string path = standardized(file);
        return std::ranges::any_of(
            parentFolders(path), [this](std::string_view folder) { return m_directories.contains(folder); });
    }

private:
    std::set<std::string, std::less<>> m_directories;
};

/// What is known of one file while sorting. Its key lies in a buffer common to all.
struct Rank {
    std::size_t index = 0; ///< in the files as they came
    std::size_t keyStart = 0;
    std::size_t keyLength = 0;
    bool fromArchive = false;
};

/// How many bytes all the paths begin with alike, up to the end of a folder's name. They cannot tell any two
/// apart.
std::size_t commonFolder(const Paths& files) {
    std::string_view common = files.empty() ? std::string_view() : files.front().native();
    for (const fs::path& file : files) {
        const auto end =
            std::mismatch(common.begin(), common.end(), file.native().begin(), file.native().end());
        common = common.substr(0, static_cast<std::size_t>(end.first - common.begin()));
    }
    return common.rfind('/') + 1; // 0 without a slash
}

std::size_t totalSize(const Paths& files) {
    return std::accumulate(files.begin(), files.end(), std::size_t{0},
                           [](std::size_t sum, const fs::path& file) { return sum + file.native().size(); });
}

/// The ranks of `files`, in order.
std::vector<Rank> ranked(const Paths& files, const ArchiveContent& archiveContent) {
    NaturalOrder naturalOrder;
    const std::size_t common = commonFolder(files);
    std::string keys;
    keys.reserve(2 * totalSize(files)); // more than enough as a rule; what is not used is never touched
    std::vector<Rank> ranks;
    ranks.reserve(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::size_t start = keys.size();
        naturalOrder.append(std::string_view(files[i].native()).substr(common), keys);
        ranks.push_back({i, start, keys.size() - start, archiveContent.holds(files[i])});
    }
    const auto keyOf = [&](const Rank& rank) {
        return std::string_view(keys).substr(rank.keyStart, rank.keyLength);
    };
    std::sort(ranks.begin(), ranks.end(), [&](const Rank& a, const Rank& b) {
        if (a.fromArchive != b.fromArchive) {
            return b.fromArchive;
        }
        if (const int order = keyOf(a).compare(keyOf(b)); order != 0) {
            return order < 0;
        }
        return files[a.index].native() < files[b.index].native();
    });
    return ranks;
}

} // namespace

void sortScanOrder(Paths& files, const Paths& temps) {
    Paths sorted;
    sorted.reserve(files.size());
    for (const Rank& rank : ranked(files, ArchiveContent(temps))) {
        sorted.push_back(std::move(files[rank.index]));
    }
    files = std::move(sorted);
}

} // namespace velmora::Collector
