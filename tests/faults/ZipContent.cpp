#include "tests/faults/ZipContent.h"

#include <zip.h>

#include <array>
#include <memory>
#include <string_view>

namespace velmora::test {

std::optional<ZipContent> contentOfZip(const fs::path& archive) {
    const std::unique_ptr<zip_t, decltype(&zip_discard)> zip(
        zip_open(archive.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, nullptr), &zip_discard);
    if (!zip) {
        return std::nullopt;
    }
    ZipContent content;
    for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(zip_get_num_entries(zip.get(), 0)); ++i) {
        zip_stat_t status;
        const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> file(zip_fopen_index(zip.get(), i, 0),
                                                                      &zip_fclose);
        if (!file || zip_stat_index(zip.get(), i, 0, &status) != 0) {
            return std::nullopt;
        }
        std::array<char, 1 << 16> buffer{};
        zip_int64_t got = 0;
        while ((got = zip_fread(file.get(), buffer.data(), buffer.size())) > 0) {
        }
        if (got < 0) { // among others: its bytes do not give its CRC
            return std::nullopt;
        }
        if (!std::string_view(status.name).ends_with('/')) {
            content.emplace(status.size, status.crc);
        }
    }
    return content;
}

} // namespace velmora::test
