#include "records/FilePath.h"

namespace velmora {

FilePath::FilePath(const std::string& path)
    : m_folder(std::make_shared<const std::string>(path, 0, path.rfind('/') + 1)) // nothing without a slash
    , m_name(path, m_folder->size()) {}

FilePath FilePath::sharing(const FilePath& other) const {
    return folder() == other.folder() ? FilePath(other.m_folder, m_name) : *this;
}

std::string FilePath::native() const {
    return std::string(folder()).append(m_name);
}

std::strong_ordering operator<=>(const FilePath& one, const FilePath& other) {
    return one.sharesFolder(other) ? one.m_name <=> other.m_name : one.native() <=> other.native();
}

} // namespace velmora
