#include "system/GradualReadAhead.h"

#include <fcntl.h>

#include <algorithm>

namespace velmora {

namespace {

/// In one call the kernel reads no more than it reads ahead of a reader by itself: by default so many bytes.
constexpr std::int64_t callBytes = std::int64_t{128} << 10;

} // namespace

GradualReadAhead::GradualReadAhead(const std::filesystem::path& path)
    : m_file(RegularFile::open(path)) {}

void GradualReadAhead::step() {
    if (!m_file) {
        return;
    }
    const std::int64_t end = std::min(m_file->size(), maxBytes);
    for (const std::int64_t stop = std::min(m_asked + stepBytes, end); m_asked < stop; m_asked += callBytes) {
        ::posix_fadvise(m_file->descriptor(), m_asked, callBytes, POSIX_FADV_WILLNEED);
    }
    if (m_asked >= end) {
        m_file.reset();
    }
}

} // namespace velmora
