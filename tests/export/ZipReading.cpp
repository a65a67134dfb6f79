#include "tests/export/ZipReading.h"

#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <sstream>

namespace velmora::test {

namespace {

constexpr std::string_view list = R"(
import sys, zipfile
for e in zipfile.ZipFile(sys.argv[1]).infolist():
    marked = e.flag_bits & 0x800
    name = e.orig_filename.encode('utf-8' if marked else 'cp437').hex()
    time = '%04d-%02d-%02d %02d:%02d:%02d' % e.date_time
    print(name, 1 if marked else 0, e.compress_type, e.create_system, e.external_attr >> 16, e.flag_bits, time)
)";

constexpr std::string_view testAll = R"(
import sys, zipfile
sys.exit(zipfile.ZipFile(sys.argv[1]).testzip() is not None)
)";

std::string python(std::string_view program, const fs::path& archive) {
    return shell("python3 -c " + shellWord(program) + " " + shellWord(archive.native()));
}

std::string fromHex(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        bytes.push_back(static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

} // namespace

std::vector<ListedEntry> entriesOf(const fs::path& archive) {
    std::vector<ListedEntry> entries;
    std::istringstream lines(python(list, archive));
    std::string name;
    ListedEntry entry;
    while (lines >> name >> entry.isMarkedUtf8 >> entry.method >> entry.system >> entry.mode >> entry.flags >>
           std::ws) {
        std::getline(lines, entry.localTime);
        entry.name = fromHex(name);
        entries.push_back(entry);
    }
    return entries;
}

std::vector<std::string> namesOf(const fs::path& archive) {
    std::vector<std::string> names;
    for (ListedEntry& entry : entriesOf(archive)) {
        names.push_back(std::move(entry.name));
    }
    return names;
}

void expectWhole(const fs::path& archive) {
    const std::string name = shellWord(archive.native());
    shell("LC_ALL=C.UTF-8 unzip -tqq " + name);
    shell("LC_ALL=C.UTF-8 bsdtar -tf " + name + " >/dev/null");
    python(testAll, archive);
}

std::map<std::string, std::string> filesBelow(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files[entry.path().native().substr(folder.native().size() + 1)] = read(entry.path());
        }
    }
    return files;
}

std::map<std::string, std::string> unpacked(const fs::path& archive) {
    const fs::path folder = freshFolder();
    shell("LC_ALL=C.UTF-8 unzip -qq " + shellWord(archive.native()), folder);
    return filesBelow(folder);
}

} // namespace velmora::test
