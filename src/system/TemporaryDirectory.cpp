#include "system/TemporaryDirectory.h"

#include "system/RemoveTree.h"

#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

namespace velmora {

namespace fs = std::filesystem;

namespace {

fs::path chosenDirectory; // empty: none was set

} // namespace

fs::path temporaryDirectory() {
    if (!chosenDirectory.empty()) {
        return chosenDirectory;
    }
    const char* named = std::getenv("TMPDIR");
    const fs::path directory = named == nullptr || *named == '\0' ? "/tmp" : named;
    std::error_code error; // there is no working directory
    const fs::path absolute = fs::absolute(directory, error);
    return error ? directory : absolute;
}

void setTemporaryDirectory(const fs::path& directory) {
    chosenDirectory = directory;
}

std::optional<TemporaryDirectory> TemporaryDirectory::make(fs::path path) {
    if (::mkdir(path.c_str(), S_IRWXU) != 0) {
        return std::nullopt;
    }
    return TemporaryDirectory(std::move(path));
}

std::optional<TemporaryDirectory> TemporaryDirectory::makeUnique(const fs::path& prefix) {
    std::string path = prefix.native() + "XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) {
        return std::nullopt;
    }
    return TemporaryDirectory(std::move(path));
}

TemporaryDirectory::TemporaryDirectory(fs::path path)
    : m_path(std::move(path)) {}

TemporaryDirectory::TemporaryDirectory(TemporaryDirectory&& other) noexcept
    : m_path(other.release()) {}

TemporaryDirectory& TemporaryDirectory::operator=(TemporaryDirectory&& other) noexcept {
    m_path.swap(other.m_path);
    return *this;
}

TemporaryDirectory::~TemporaryDirectory() {
    if (!m_path.empty()) {
        removeTree(m_path);
    }
}

fs::path TemporaryDirectory::release() {
    return std::exchange(m_path, {});
}

} // namespace velmora
