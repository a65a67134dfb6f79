#pragma once

// Lets libzip read one staged file. The file is open only while it is read, so an archive may have more files
// than a process may have descriptors.

#include "export/ZipSource.h"
#include "system/RegularFile.h"

#include <ctime>
#include <filesystem>
#include <optional>
#include <stop_token>

namespace velmora {

class ZipInput : public ZipSource {
public:
    /// `size` in bytes and `modified` are what the archive will state of `file`. Reading fails with ECANCELED
    /// when `stop` is requested.
    ZipInput(std::filesystem::path file, zip_uint64_t size, std::time_t modified, std::stop_token stop,
             std::exception_ptr& failure);

protected:
    zip_int64_t commands() const override { return ZIP_SOURCE_SUPPORTS_READABLE; }

    zip_int64_t answer(zip_source_cmd_t command, void* data, zip_uint64_t size) override;

private:
    void open();
    zip_int64_t read(void* data, zip_uint64_t size);

    std::filesystem::path m_path;
    zip_uint64_t m_size;
    std::time_t m_modified;
    std::stop_token m_stop;
    std::optional<RegularFile> m_file;
    std::int64_t m_position = 0;
};

} // namespace velmora
