#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace velmora::test {

fs::path freshFolder() {
    static int number = 0;
    fs::path folder;
    do { // a forked process may have taken the next numbers
        folder = fs::temp_directory_path() / "folders" / std::to_string(++number);
    } while (!fs::create_directories(folder));
    return folder;
}

fs::path write(const fs::path& path, std::string_view content) {
    fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    if (!stream) {
        ADD_FAILURE() << "cannot write " << path;
    }
    return path;
}

fs::path write(const fs::path& path, const Bytes& content) {
    return write(path, std::string_view(reinterpret_cast<const char*>(content.data()), content.size()));
}

std::string read(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        ADD_FAILURE() << "cannot read " << path;
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> namesIn(const fs::path& folder, std::string_view prefix) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        std::string name = entry.path().filename().native();
        if (name.starts_with(prefix)) {
            names.push_back(std::move(name));
        }
    }
    std::ranges::sort(names);
    return names;
}

std::vector<std::string> temporaryItems() {
    return namesIn(fs::temp_directory_path(), "velmora-");
}

} // namespace velmora::test
