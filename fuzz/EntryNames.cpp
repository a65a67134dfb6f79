// The names of files in the zip archive that is written.

#include "export/EntryNames.h"

#include "export/EntryEncoding.h"
#include "fuzz/Targets.h"
#include "system/FileName.h"
#include "system/UnicodeCase.h"

#include <algorithm>
#include <set>

namespace velmora::fuzz {

namespace {

/// Nothing in `name` leads out of the folder that the archive is unpacked in.
void requireInside(std::string_view name) {
    require(!name.empty() && name.front() != '/', "a name is relative and not empty");
    for (const auto& component : std::filesystem::path(name)) {
        require(component != "..", "no name leads upwards");
    }
}

void requireUnique(const std::vector<std::string>& names) {
    std::set<std::string> taken;
    for (const std::string& name : names) {
        require(taken.insert(lowerCased(name)).second, "no two names differ by case alone");
    }
    for (const std::string& name : taken) {
        for (std::size_t slash = name.find('/'); slash != std::string::npos;
             slash = name.find('/', slash + 1)) {
            require(!taken.contains(name.substr(0, slash)), "no file stands where a folder is needed");
        }
    }
}

} // namespace

void fuzzEntryNames(Bytes bytes) {
    Input input(bytes);
    const std::size_t rootCount = input.byte() % 4U;
    Paths files = absolutePaths(input.rest(), 16);
    std::erase_if(files, [](const auto& file) { return standardized(file) == "/"; }); // a file has a name
    const std::size_t split = std::min(rootCount, files.size());
    const Paths roots(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(split));
    const std::vector<std::string> names = entryNames(files, roots);
    require(names.size() == files.size(), "each file has a name");
    require(entryNames(files, roots) == names, "names are the same the second time");
    std::ranges::for_each(names, &requireInside);
    requireUnique(names);
    for (const std::string& name : names) {
        require(!encodedName(name).text.empty(), "an encoded name is not empty");
    }
}

} // namespace velmora::fuzz
