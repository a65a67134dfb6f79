#include "scan/FolderTotals.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace velmora {

namespace {

using Names = std::unordered_set<std::string>;

/// The folder that holds `path`, without a final "/": that of all is "".
std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

/// `dropped` as folders, whether they are folders or not.
Names namesOf(const PathList& dropped) {
    Names names;
    for (const std::filesystem::path& path : dropped) {
        std::string name = path.native();
        while (name.ends_with('/')) {
            name.pop_back();
        }
        names.insert(std::move(name));
    }
    return names;
}

/// What was dropped, with its folder in place of a file: below these, folders are counted.
Names sourcesOf(const ScanDetails& details, const PathList& dropped) {
    Names names = namesOf(dropped);
    Names folders;
    for (const Measured& file : details.files) {
        if (names.contains(file.url.native())) {
            folders.insert(parentOf(file.url.native()));
        }
    }
    names.merge(folders);
    return names;
}

class FolderTree {
public:
    explicit FolderTree(Names sources)
        : m_sources(std::move(sources)) {}

    /// Counts `file` in the folder of this number, absent above all sources.
    void add(const Measured& file, const std::optional<std::size_t>& folder) {
        if (folder && file.seconds >= 0) {
            m_folders[*folder].seconds += file.seconds;
            m_folders[*folder].files += 1;
        }
    }

    /// The number of the folder of that name. Absent above all sources.
    std::optional<std::size_t> folderAt(const std::string& name) {
        if (const auto known = m_indices.find(name); known != m_indices.end()) {
            return known->second;
        }
        const std::optional<std::size_t> outer = name.empty() ? std::nullopt : folderAt(parentOf(name));
        const bool isSource = m_sources.contains(name);
        if (!outer && !isSource) {
            return std::nullopt;
        }
        const std::size_t index = m_folders.size();
        const auto place = m_indices.emplace(name, index).first;
        m_folders.push_back({&place->first, outer, isSource ? 0 : m_folders[*outer].depth + 1});
        (outer ? m_folders[*outer].inner : m_outermost).push_back(index);
        return index;
    }

    /// Counts what is in a folder for those around it, once all files are in.
    void addUp() {
        std::for_each(m_folders.rbegin(), m_folders.rend(), [this](const Folder& folder) {
            if (folder.outer) {
                m_folders[*folder.outer].seconds += folder.seconds;
                m_folders[*folder.outer].files += folder.files;
            }
        });
    }

    /// All folders, in order.
    std::vector<FolderTotal> totals() const {
        std::vector<FolderTotal> totals;
        totals.reserve(m_folders.size());
        std::vector<std::size_t> pending(m_outermost.rbegin(), m_outermost.rend());
        while (!pending.empty()) {
            const Folder& folder = m_folders[pending.back()];
            pending.pop_back();
            totals.push_back(
                {folder.name->empty() ? "/" : *folder.name, folder.depth, folder.seconds, folder.files});
            pending.insert(pending.end(), folder.inner.rbegin(), folder.inner.rend());
        }
        return totals;
    }

private:
    struct Folder {
        const std::string* name = nullptr; ///< the key in m_indices
        std::optional<std::size_t> outer;  ///< its place comes before this one's
        int depth = 0;                     ///< below the nearest source
        double seconds = 0;
        std::int64_t files = 0;
        std::vector<std::size_t> inner = {}; ///< in the order of their first files
    };

    const Names m_sources;
    std::vector<Folder> m_folders;
    std::unordered_map<std::string, std::size_t> m_indices;
    std::vector<std::size_t> m_outermost;
};

} // namespace

std::vector<FolderTotal> folderTotals(const ScanDetails& details, const PathList& dropped) {
    FolderTree tree(sourcesOf(details, dropped));
    std::optional<std::size_t> folder;
    for (std::size_t i = 0; i < details.files.size(); ++i) {
        const FilePath& path = details.files[i].url;
        if (i == 0 || !path.sharesFolder(details.files[i - 1].url)) {
            folder = tree.folderAt(parentOf(details.shownName(path.native())));
        }
        tree.add(details.files[i], folder);
    }
    tree.addUp();
    return tree.totals();
}

} // namespace velmora
