#pragma once

// Lets libzip write an archive to a new file, through a buffer: libzip writes 8 KiB at a time, and it goes
// back to every entry's header once the entry's checksum is known. What is still in the buffer then is
// changed there.

#include "export/ZipSource.h"
#include "system/RegularFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace velmora {

class ZipOutput : public ZipSource {
public:
    /// The file is made at `archive` (by the user's umask) when writing begins; a failure leaves it there,
    /// unfinished.
    ZipOutput(std::filesystem::path archive, std::exception_ptr& failure);

protected:
    zip_int64_t commands() const override { return ZIP_SOURCE_SUPPORTS_WRITABLE; }

    zip_int64_t answer(zip_source_cmd_t command, void* data, zip_uint64_t size) override;

private:
    void create();
    void write(const std::uint8_t* data, std::size_t size);
    void seek(std::int64_t position);
    void flush();

    std::int64_t position() const { return m_start + static_cast<std::int64_t>(m_cursor); }

    std::filesystem::path m_path;
    FileDescriptor m_file;
    std::vector<std::uint8_t> m_buffer;
    std::int64_t m_start = 0;  // where in the file the buffer begins
    std::size_t m_cursor = 0;  // in the buffer: the next byte is written here
    std::size_t m_filled = 0;  // bytes in the buffer
    std::int64_t m_length = 0; // bytes of the archive so far, buffered ones included
};

} // namespace velmora
