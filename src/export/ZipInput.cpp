#include "export/ZipInput.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void failToRead(const fs::path& path, int error) {
    throw fs::filesystem_error("cannot read", path, std::error_code(error, std::generic_category()));
}

} // namespace

ZipInput::ZipInput(fs::path file, zip_uint64_t size, std::time_t modified, std::stop_token stop,
                   std::exception_ptr& failure)
    : ZipSource(failure)
    , m_path(std::move(file))
    , m_size(size)
    , m_modified(modified)
    , m_stop(std::move(stop)) {}

zip_int64_t ZipInput::answer(zip_source_cmd_t command, void* data, zip_uint64_t size) {
    switch (command) {
    case ZIP_SOURCE_STAT: {
        auto& status = *static_cast<zip_stat_t*>(data);
        zip_stat_init(&status);
        status.size = m_size;
        status.mtime = m_modified;
        status.valid |= ZIP_STAT_SIZE | ZIP_STAT_MTIME;
        return sizeof(zip_stat_t);
    }
    case ZIP_SOURCE_OPEN:
        open();
        return 0;
    case ZIP_SOURCE_READ:
        return read(data, size);
    case ZIP_SOURCE_CLOSE:
        m_file.reset();
        return 0;
    default: // not among commands()
        return -1;
    }
}

void ZipInput::open() {
    m_file = RegularFile::open(m_path);
    m_position = 0;
    if (!m_file) {
        failToRead(m_path, errno);
    }
}

zip_int64_t ZipInput::read(void* data, zip_uint64_t size) {
    if (m_stop.stop_requested()) {
        failToRead(m_path, ECANCELED);
    }
    const std::optional<std::size_t> got =
        m_file->readAt(m_position, std::span(static_cast<std::uint8_t*>(data), size));
    if (!got) {
        failToRead(m_path, errno);
    }
    m_position += static_cast<std::int64_t>(*got);
    return static_cast<zip_int64_t>(*got);
}

} // namespace velmora
