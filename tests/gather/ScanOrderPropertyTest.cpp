// The scan order is made of keys of folders and of names. It is that of whole paths, whatever they hold.

#include "gather/ScanOrder.h"
#include "system/NaturalOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <string>

namespace velmora {
namespace {

class RandomPaths {
public:
    explicit RandomPaths(unsigned seed)
        : m_random(seed) {}

    /// Paths of which many lie in the same folders or in folders that begin alike, in any order, those of a
    /// folder often one after the other.
    FilePaths files() {
        std::vector<std::string> folders = {"/"};
        while (folders.size() < 8) {
            folders.push_back(folders[below(folders.size())] + name() + '/');
        }
        FilePaths files;
        while (files.size() < 60) {
            const FilePath::Folder folder =
                std::make_shared<const std::string>(folders[below(folders.size())]);
            for (std::size_t count = below(4); count > 0; --count) {
                files.emplace_back(folder, name());
            }
        }
        return files;
    }

private:
    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(m_random);
    }

    std::string name() {
        static constexpr std::array pieces = {
            "a",  "A",     "b", "\u00e1", "e\u0301", "\u0301", "\u00df", "0",
            "1",  "02",    "9", " ",      "!",       "(",      "-",      ".",
            "_",  "+",     "~", "\uff0f", "\u65e5",  "\u0434", "\xFF",   "\u0e40\u0e01",
            "\\", "\u00a0"};
        std::string name;
        for (std::size_t count = 1 + below(3); count > 0; --count) {
            name += pieces[below(pieces.size())];
        }
        return name;
    }

    std::mt19937 m_random;
};

/// Sorts by the keys of whole paths.
FilePaths sortedPlainly(FilePaths files) {
    NaturalOrder naturalOrder;
    const auto keyOf = [&](const FilePath& file) {
        std::string key;
        naturalOrder.append(file.native(), key);
        return key;
    };
    std::ranges::stable_sort(files, [&](const FilePath& one, const FilePath& other) {
        const std::string key = keyOf(one);
        const std::string otherKey = keyOf(other);
        return key != otherKey ? key < otherKey : one.native() < other.native();
    });
    return files;
}

std::string lines(const FilePaths& files) {
    std::string text;
    for (const FilePath& file : files) {
        text += file.native() + '\n';
    }
    return text;
}

TEST(ScanOrderProperty, IsThatOfWholePaths) {
    // Accents are compared from the end of a path in French Canada; Thai letters change places.
    for (const char* locale :
         {"C", "de_DE.UTF-8", "sv_SE.UTF-8", "fr_CA.UTF-8", "th_TH.UTF-8", "ja_JP.UTF-8"}) {
        ::setenv("LC_ALL", locale, 1);
        for (unsigned seed = 0; seed < 40; ++seed) {
            FilePaths files = RandomPaths(seed).files();
            const FilePaths expected = sortedPlainly(files);
            Collector::sortScanOrder(files, {});
            ASSERT_EQ(lines(files), lines(expected)) << locale << ", seed " << seed;
        }
    }
}

} // namespace
} // namespace velmora
