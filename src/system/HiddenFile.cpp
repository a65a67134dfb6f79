#include "system/HiddenFile.h"

#include "system/Paths.h"
#include "system/RemoveTree.h"
#include "system/RunLock.h"
#include "system/Uuid.h"

#include <fcntl.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view hiddenPrefix = ".velmora-";

/// As for private directories: another program that looks for dead ones may take a new file for one.
constexpr int maxFilesMade = 100;

/// Whether only `HiddenFile` gives such names.
bool isHiddenName(std::string_view name) {
    constexpr std::size_t uuidLength = 36;
    return name.starts_with(hiddenPrefix) && name.size() == hiddenPrefix.size() + uuidLength &&
           name.find_first_not_of("0123456789ABCDEF-", hiddenPrefix.size()) == std::string_view::npos;
}

} // namespace

HiddenFile::HiddenFile(const fs::path& folder) {
    for (int made = 0; made < maxFilesMade; ++made) {
        m_path = folder / (std::string(hiddenPrefix) + randomUuid());
        if (!FileDescriptor(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600))) {
            throw std::system_error(errno, std::generic_category());
        }
        m_lock = lockFile(m_path);
        if (m_lock || !wasTaken(errno)) {
            return;
        }
    }
    throw std::system_error(ESTALE, std::generic_category());
}

HiddenFile::~HiddenFile() {
    removeTree(m_path);
}

void removeDeadHiddenFiles(const fs::path& folder) {
    Paths hidden;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (isHiddenName(entry->path().filename().native())) {
            hidden.push_back(entry->path());
        }
    }
    for (const fs::path& path : hidden) {
        if (const FileDescriptor lock = lockFile(path)) {
            removeTree(path);
        }
    }
}

} // namespace velmora
