#include "export/ZipOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t bufferSize = std::size_t{256} << 10; // larger ones leave the processor's cache

[[noreturn]] void failToWrite(const fs::path& path, int error) {
    throw fs::filesystem_error("cannot write", path, std::error_code(error, std::generic_category()));
}

} // namespace

ZipOutput::ZipOutput(fs::path archive, std::exception_ptr& failure)
    : ZipSource(failure)
    , m_path(std::move(archive)) {}

zip_int64_t ZipOutput::answer(zip_source_cmd_t command, void* data, zip_uint64_t size) {
    switch (command) {
    case ZIP_SOURCE_STAT: { // an empty file: libzip has nothing to read from it
        auto& status = *static_cast<zip_stat_t*>(data);
        zip_stat_init(&status);
        status.size = 0;
        status.valid |= ZIP_STAT_SIZE;
        return sizeof(zip_stat_t);
    }
    case ZIP_SOURCE_BEGIN_WRITE:
        create();
        return 0;
    case ZIP_SOURCE_WRITE:
        write(static_cast<const std::uint8_t*>(data), size);
        return static_cast<zip_int64_t>(size);
    case ZIP_SOURCE_TELL_WRITE:
        return position();
    case ZIP_SOURCE_SEEK_WRITE:
        seek(zip_source_seek_compute_offset(static_cast<zip_uint64_t>(position()),
                                            static_cast<zip_uint64_t>(m_length), data, size, nullptr));
        return 0;
    case ZIP_SOURCE_COMMIT_WRITE:
        flush();
        return 0;
    case ZIP_SOURCE_OPEN:
    case ZIP_SOURCE_CLOSE:
    case ZIP_SOURCE_ROLLBACK_WRITE:
    case ZIP_SOURCE_REMOVE:
        return 0;
    default: // an archive that is only written is not read
        return -1;
    }
}

void ZipOutput::create() {
    m_file = FileDescriptor(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!m_file) {
        failToWrite(m_path, errno);
    }
    m_buffer.resize(bufferSize);
}

void ZipOutput::write(const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        if (m_cursor == m_buffer.size()) {
            flush();
        }
        const std::size_t part = std::min(size, m_buffer.size() - m_cursor);
        std::memcpy(m_buffer.data() + m_cursor, data, part);
        m_cursor += part;
        m_filled = std::max(m_filled, m_cursor);
        data += part;
        size -= part;
    }
    m_length = std::max(m_length, position());
}

void ZipOutput::seek(std::int64_t position) {
    if (position < 0) {
        failToWrite(m_path, EINVAL);
    }
    if (position < m_start || position > m_start + static_cast<std::int64_t>(m_filled)) {
        flush();
        m_start = position;
    }
    m_cursor = static_cast<std::size_t>(position - m_start);
}

/// Writes the buffer out; it goes on, empty, at the same position.
void ZipOutput::flush() {
    std::size_t done = 0;
    while (done < m_filled) {
        const ssize_t written = ::pwrite(m_file.get(), m_buffer.data() + done, m_filled - done,
                                         m_start + static_cast<std::int64_t>(done));
        if (written < 0 && errno != EINTR) {
            failToWrite(m_path, errno);
        }
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    m_start = position();
    m_cursor = 0;
    m_filled = 0;
}

} // namespace velmora
