#include "system/GradualReadAhead.h"

#include <algorithm>

namespace velmora {

GradualReadAhead::GradualReadAhead(const std::filesystem::path& path)
    : m_file(RegularFile::open(path)) {}

void GradualReadAhead::step() {
    if (!m_file) {
        return;
    }
    m_file->willNeed(m_asked, stepBytes);
    m_asked += stepBytes;
    if (m_asked >= std::min(m_file->size(), maxBytes)) {
        m_file.reset();
    }
}

} // namespace velmora
