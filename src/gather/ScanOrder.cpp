#include "gather/ScanOrder.h"

#include "system/FileName.h"
#include "system/Paths.h"

#include <unicode/coll.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// The locale in which the user wants things sorted: root where the environment names none, or a technical
/// one.
icu::Locale sortingLocale() {
    for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') {
            continue;
        }
        const std::string name = std::string(value).substr(0, std::string_view(value).find_first_of(".@"));
        return name == "C" || name == "POSIX" ? icu::Locale::getRoot()
                                              : icu::Locale::createCanonical(name.c_str());
    }
    return icu::Locale::getRoot();
}

/// Makes keys whose order as bytes is the order a file manager shows. Without a collator every key is empty,
/// and the tie-break by bytes is all there is.
class KeyMaker {
public:
    KeyMaker() {
        UErrorCode status = U_ZERO_ERROR;
        m_collator.reset(icu::Collator::createInstance(sortingLocale(), status));
        if (U_FAILURE(status) == 0) {
            m_collator->setStrength(icu::Collator::SECONDARY); // accents count, case does not
            m_collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
            m_collator->setAttribute(UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, status); // a slash counts
        }
        if (U_FAILURE(status) != 0) {
            m_collator.reset();
        }
    }

    /// Appends the key of `text` to `keys`. Bytes that are not UTF-8 count as U+FFFD.
    void append(std::string_view text, std::string& keys) {
        if (!m_collator) {
            return;
        }
        const icu::UnicodeString unicode =
            icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
        const auto make = [&] {
            return m_collator->getSortKey(unicode, m_buffer.data(), static_cast<int32_t>(m_buffer.size()));
        };
        std::int32_t length = make();
        if (length > static_cast<std::int32_t>(m_buffer.size())) {
            m_buffer.resize(static_cast<std::size_t>(length));
            length = make();
        }
        keys.append(m_buffer.begin(), m_buffer.begin() + length);
    }

private:
    std::unique_ptr<icu::Collator> m_collator;
    std::vector<std::uint8_t> m_buffer = std::vector<std::uint8_t>(1024);
};

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
    KeyMaker keyMaker;
    const std::size_t common = commonFolder(files);
    std::string keys;
    keys.reserve(2 * totalSize(files)); // more than enough as a rule; what is not used is never touched
    std::vector<Rank> ranks;
    ranks.reserve(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::size_t start = keys.size();
        keyMaker.append(std::string_view(files[i].native()).substr(common), keys);
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
