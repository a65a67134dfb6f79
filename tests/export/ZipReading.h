#pragma once

// Reads zip archives with the tools people have: unzip, bsdtar and Python.

#include "tests/support/Files.h"

#include <map>
#include <string>
#include <vector>

namespace velmora::test {

/// An entry as the archive's central directory states it.
struct ListedEntry {
    std::string name; ///< as bytes; a folder's ends with "/"
    bool isMarkedUtf8 = false;
    int method = -1;       ///< 0 stored, 8 deflated
    int system = -1;       ///< 3: made on Unix
    unsigned mode = 0;     ///< Unix file type and permissions
    std::string localTime; ///< "2024-02-29 23:59:58"
    unsigned flags = 0;
};

/// Every entry of `archive` in its order.
std::vector<ListedEntry> entriesOf(const fs::path& archive);

/// The names of `archive`'s entries in their order.
std::vector<std::string> namesOf(const fs::path& archive);

/// Expects that unzip, bsdtar and Python all find `archive` whole.
void expectWhole(const fs::path& archive);

/// The regular files below `folder`: relative path and content.
std::map<std::string, std::string> filesBelow(const fs::path& folder);

/// What unzip makes of `archive`, unpacked into a fresh folder.
std::map<std::string, std::string> unpacked(const fs::path& archive);

} // namespace velmora::test
