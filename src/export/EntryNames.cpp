#include "export/EntryNames.h"

#include "export/Zipper.h"
#include "system/FileName.h"
#include "system/Paths.h"
#include "system/UnicodeCase.h"

#include <algorithm>
#include <climits>
#include <unordered_set>

namespace velmora {

namespace {

namespace fs = std::filesystem;

// A character of UTF-8 is a lead byte and up to three continuation bytes, whose upper two bits are 10.
constexpr unsigned continuationMask = 0xC0;
constexpr unsigned continuation = 0x80;
constexpr int maxContinuations = 3;

std::string numbered(std::string_view name, int number) {
    const std::string ending = " (" + std::to_string(number) + ").";
    return withEnding(withoutExtension(name), ending + std::string(extensionOf(name)));
}

/// The names that the archive has, in lower case.
class TakenNames {
public:
    void takeFoldersOf(std::string_view name) {
        const std::string lower = lowerCased(name);
        for (const std::string_view folder : parentFolders(lower)) {
            m_taken.emplace(folder);
        }
    }

    /// `name`, or the first numbered one that is free; taken from then on.
    std::string take(std::string name) {
        if (m_taken.insert(lowerCased(name)).second) {
            return name;
        }
        int& number = m_numbers.try_emplace(name, 1).first->second;
        std::string candidate;
        do {
            candidate = numbered(name, ++number);
        } while (!m_taken.insert(lowerCased(candidate)).second);
        return candidate;
    }

private:
    std::unordered_set<std::string> m_taken;
    std::unordered_map<std::string, int> m_numbers; // the last number given to a name: smaller ones are taken
};

} // namespace

Roots::Roots(const Paths& roots) {
    for (const fs::path& root : roots) {
        std::string folder = standardized(root);
        if (folder.back() != '/') {
            folder += '/';
        }
        m_ranks.try_emplace(std::move(folder), m_ranks.size());
    }
}

std::string Roots::relativePath(const fs::path& file) const {
    const std::string path = standardized(file);
    std::size_t bestRank = m_ranks.size();
    std::size_t bestLength = 0;
    for (const std::string_view folder : parentFolders(path)) {
        const auto found = m_ranks.find(path.substr(0, folder.size() + 1));
        if (found != m_ranks.end() && found->second < bestRank) {
            bestRank = found->second;
            bestLength = folder.size() + 1;
        }
    }
    return bestLength == 0 ? lastComponent(path) : path.substr(bestLength);
}

std::vector<std::string> entryNames(const Paths& files, const Paths& roots) {
    const Roots bases(roots);
    std::vector<std::string> names;
    names.reserve(files.size());
    TakenNames taken;
    for (const fs::path& file : files) {
        names.push_back(bases.relativePath(file));
        taken.takeFoldersOf(names.back());
    }
    for (std::string& name : names) {
        name = taken.take(std::move(name));
    }
    return names;
}

std::string withEnding(std::string_view base, std::string_view ending) {
    const std::size_t start = base.rfind('/') + 1; // 0 without a "/"
    const std::size_t room = NAME_MAX - std::min<std::size_t>(ending.size(), NAME_MAX);
    if (base.size() - start > room) {
        const auto insideCharacter = [&](std::size_t end) {
            return end > start && (static_cast<unsigned char>(base[end]) & continuationMask) == continuation;
        };
        std::size_t end = start + room;
        for (int back = 0; back < maxContinuations && insideCharacter(end); ++back) {
            --end;
        }
        base = base.substr(0, end);
    }
    return std::string(base) + std::string(ending);
}

std::string Zipper::relativePath(const fs::path& file, const Paths& roots) {
    return Roots(roots).relativePath(file);
}

} // namespace velmora
