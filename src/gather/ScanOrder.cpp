#include "gather/ScanOrder.h"

#include "system/FileName.h"
#include "system/NaturalOrder.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::Collector {

namespace {

/// Tells what came out of an archive by the directory it lies in.
class ArchiveContent {
public:
    explicit ArchiveContent(const Paths& directories) {
        std::transform(directories.begin(), directories.end(),
                       std::inserter(m_directories, m_directories.end()), &standardized);
    }

    /// Whether `folder` is one of the directories or lies in one.
    bool holds(std::string_view folder) const {
        if (m_directories.empty()) {
            return false;
        }
        const std::string path = standardized(folder) + '/';
        return std::ranges::any_of(parentFolders(path),
                                   [this](std::string_view outer) { return m_directories.contains(outer); });
    }

private:
    std::set<std::string, std::less<>> m_directories;
};

/// How many bytes all the folders begin with alike, up to the end of a folder's name. They cannot tell any
/// two files apart.
std::size_t commonFolder(const FilePaths& files) {
    std::string_view common = files.front().folder();
    for (std::size_t i = 1; i < files.size(); ++i) {
        if (!files[i].sharesFolder(files[i - 1])) {
            const std::string_view folder = files[i].folder();
            const auto end = std::mismatch(common.begin(), common.end(), folder.begin(), folder.end()).first;
            common = common.substr(0, static_cast<std::size_t>(end - common.begin()));
        }
    }
    return common.rfind('/') + 1; // 0 without a slash
}

/// A key within a buffer of many.
struct Key {
    std::size_t start = 0;
    std::size_t length = 0;

    std::string_view in(const std::string& keys) const {
        return std::string_view(keys).substr(start, length);
    }
};

/// The keys of folders one after the other. What a folder has in common with the one before is copied.
class FolderKeys {
public:
    FolderKeys(NaturalOrder& naturalOrder, std::string& keys)
        : m_naturalOrder(naturalOrder)
        , m_keys(keys) {}

    Key add(std::string_view folder) {
        const auto common = std::mismatch(folder.begin(), folder.end(), m_last.begin(), m_last.end()).first;
        while (!m_ends.empty() && m_ends.back().folder > static_cast<std::size_t>(common - folder.begin())) {
            m_ends.pop_back();
        }
        const std::size_t start = m_keys.size();
        Ends end = m_ends.empty() ? Ends() : m_ends.back();
        m_keys.append(m_keys, m_lastStart, end.key);
        while (end.folder < folder.size()) {
            const std::size_t next = std::min(folder.find('/', end.folder), folder.size() - 1) + 1;
            m_naturalOrder.appendLetters(folder.substr(end.folder, next - end.folder), m_keys);
            end = {next, m_keys.size() - start};
            m_ends.push_back(end);
        }
        m_last = folder;
        m_lastStart = start;
        return {start, end.key};
    }

private:
    /// Where a component ends, in the folder and in its key.
    struct Ends {
        std::size_t folder = 0;
        std::size_t key = 0;
    };

    NaturalOrder& m_naturalOrder;
    std::string& m_keys;
    std::string_view m_last;
    std::size_t m_lastStart = 0;
    std::vector<Ends> m_ends; // of the components of the last folder
};

/// As `folder + name` compares with `otherFolder + otherName`.
int compareJoined(std::string_view folder, std::string_view name, std::string_view otherFolder,
                  std::string_view otherName) {
    if (folder.size() > otherFolder.size()) {
        return -compareJoined(otherFolder, otherName, folder, name);
    }
    if (const int order = folder.compare(otherFolder.substr(0, folder.size())); order != 0) {
        return order;
    }
    const std::string_view rest = otherFolder.substr(folder.size());
    if (const int order = name.substr(0, rest.size()).compare(rest); order != 0) {
        return order;
    }
    return name.substr(rest.size()).compare(otherName);
}

/// Knows how any two of the files compare.
class Order {
public:
    Order(const FilePaths& files, const ArchiveContent& archiveContent)
        : m_files(files)
        , m_common(commonFolder(files)) {
        FolderKeys folderKeys(m_naturalOrder, m_folderKeys);
        m_ranks.reserve(files.size());
        for (const FilePath& file : files) {
            const std::size_t index = m_ranks.size();
            if (index == 0 || !file.sharesFolder(files[index - 1])) {
                m_folders.push_back(
                    {folderKeys.add(file.folder().substr(m_common)), archiveContent.holds(file.folder())});
            }
            const std::size_t start = m_names.size();
            m_naturalOrder.appendLetters(file.name(), m_names);
            m_ranks.push_back({static_cast<std::uint32_t>(index),
                               static_cast<std::uint32_t>(m_folders.size() - 1),
                               {start, m_names.size() - start}});
        }
    }

    /// The places of the files as they came, in order.
    std::vector<std::uint32_t> sorted() && {
        std::sort(m_ranks.begin(), m_ranks.end(),
                  [this](const Rank& one, const Rank& other) { return isBefore(one, other); });
        std::vector<std::uint32_t> places(m_ranks.size());
        std::ranges::transform(m_ranks, places.begin(), &Rank::index);
        return places;
    }

private:
    struct Folder {
        Key key;
        bool fromArchive = false;
    };

    struct Rank {
        std::uint32_t index = 0; ///< in the files as they came
        std::uint32_t folder = 0;
        Key name;
    };

    bool isBefore(const Rank& one, const Rank& other) {
        const Folder& folder = m_folders[one.folder];
        const Folder& otherFolder = m_folders[other.folder];
        if (folder.fromArchive != otherFolder.fromArchive) {
            return otherFolder.fromArchive;
        }
        const std::string_view name = one.name.in(m_names);
        const std::string_view otherName = other.name.in(m_names);
        const int order = one.folder == other.folder
                              ? name.compare(otherName)
                              : compareJoined(folder.key.in(m_folderKeys), name,
                                              otherFolder.key.in(m_folderKeys), otherName);
        return order != 0 ? order < 0 : isBeforeByAccents(m_files[one.index], m_files[other.index]);
    }

    /// Few pairs of files have equal letters.
    bool isBeforeByAccents(const FilePath& one, const FilePath& other) {
        std::string key;
        std::string otherKey;
        m_naturalOrder.append(std::string_view(one.native()).substr(m_common), key);
        m_naturalOrder.append(std::string_view(other.native()).substr(m_common), otherKey);
        return key != otherKey ? key < otherKey : one < other;
    }

    const FilePaths& m_files;
    const std::size_t m_common;
    NaturalOrder m_naturalOrder;
    std::string m_folderKeys;
    std::string m_names; // the keys of names
    std::vector<Folder> m_folders;
    std::vector<Rank> m_ranks;
};

} // namespace

void sortScanOrder(FilePaths& files, const Paths& temps) {
    if (files.empty()) {
        return;
    }
    FilePaths sorted;
    sorted.reserve(files.size());
    for (const std::uint32_t place : Order(files, ArchiveContent(temps)).sorted()) {
        sorted.push_back(std::move(files[place]));
    }
    files = std::move(sorted);
}

} // namespace velmora::Collector
