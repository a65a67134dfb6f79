#include "export/ZipWriter.h"

#include "export/EntryEncoding.h"
#include "export/ZipInput.h"
#include "export/ZipOutput.h"
#include "export/Zipper.h"
#include "records/AudioExtensions.h"
#include "system/FileName.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>
#include <memory>
#include <system_error>
#include <unordered_set>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr zip_uint32_t deflateLevel = 3; // PCM: three to four times as fast as 6, and hardly larger

constexpr zip_uint32_t fileAttributes = zip_uint32_t{S_IFREG | 0644} << 16;
constexpr zip_uint32_t dosDirectory = 0x10;
constexpr zip_uint32_t folderAttributes = (zip_uint32_t{S_IFDIR | 0755} << 16) | dosDirectory;

std::time_t localTime(int year, int month, int day, int hour, int minute, int second) {
    std::tm time{};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    time.tm_isdst = -1;
    return std::mktime(&time);
}

/// An entry's time is DOS local time: years 1980 to 2107, even seconds.
std::time_t clampedToZip(std::time_t time) {
    static const std::time_t first = localTime(1980, 1, 1, 0, 0, 0);
    static const std::time_t last = localTime(2107, 12, 31, 23, 59, 58);
    return std::clamp(time, first, last);
}

/// The archive while libzip collects its entries. `close` writes it; without `close` nothing is written.
class Archive {
public:
    Archive(const fs::path& path, std::stop_token stop)
        : m_stop(std::move(stop)) {
        SourcePointer output = give(std::make_unique<ZipOutput>(path, m_failure));
        m_zip.reset(zip_open_from_source(output.get(), ZIP_CREATE | ZIP_TRUNCATE, nullptr));
        check(m_zip != nullptr);
        static_cast<void>(output.release());
    }

    /// `name` ends with "/".
    void addFolder(const std::string& name) {
        const EncodedName encoded = encodedName(name);
        const zip_int64_t added = zip_dir_add(m_zip.get(), encoded.text.c_str(), encoded.encoding);
        check(added >= 0);
        setAttributes(static_cast<zip_uint64_t>(added), folderAttributes);
    }

    void addFile(const std::string& name, const fs::path& file) {
        struct stat status {};

        if (::stat(file.c_str(), &status) != 0) {
            throw fs::filesystem_error("cannot read", file, std::error_code(errno, std::generic_category()));
        }
        const std::time_t modified = clampedToZip(status.st_mtime);
        SourcePointer input = give(std::make_unique<ZipInput>(file, static_cast<zip_uint64_t>(status.st_size),
                                                              modified, m_stop, m_failure));
        const EncodedName encoded = encodedName(name);
        const zip_int64_t added =
            zip_file_add(m_zip.get(), encoded.text.c_str(), input.get(), encoded.encoding);
        check(added >= 0);
        static_cast<void>(input.release());
        const auto index = static_cast<zip_uint64_t>(added);
        setCompression(index, Collector::isUncompressed(classifyingExtension(file)));
        setAttributes(index, fileAttributes);
        setExactTime(index, modified);
    }

    void close() {
        check(zip_close(m_zip.get()) == 0);
        static_cast<void>(m_zip.release());
    }

private:
    struct Discard {
        void operator()(zip_t* zip) const { zip_discard(zip); }

        void operator()(zip_source_t* source) const { zip_source_free(source); }
    };

    using SourcePointer = std::unique_ptr<zip_source_t, Discard>;

    SourcePointer give(std::unique_ptr<ZipSource> source) const {
        SourcePointer result(ZipSource::create(std::move(source)));
        check(result != nullptr);
        return result;
    }

    void setCompression(zip_uint64_t index, bool deflated) {
        const zip_int32_t method = deflated ? ZIP_CM_DEFLATE : ZIP_CM_STORE;
        check(zip_set_file_compression(m_zip.get(), index, method, deflated ? deflateLevel : 0) == 0);
    }

    void setAttributes(zip_uint64_t index, zip_uint32_t attributes) {
        check(zip_file_set_external_attributes(m_zip.get(), index, 0, ZIP_OPSYS_UNIX, attributes) == 0);
    }

    /// Adds the time in whole seconds of UTC, which DOS time cannot state. Extra field 0x5455 "extended
    /// timestamp": flags (1 byte, bit 0: modification time), seconds since 1970 (4, signed).
    void setExactTime(zip_uint64_t index, std::time_t modified) {
        constexpr zip_uint16_t extendedTimestamp = 0x5455;
        if (modified > std::numeric_limits<std::int32_t>::max()) {
            return;
        }
        std::array<zip_uint8_t, 5> field = {1};
        for (std::size_t byte = 0; byte < 4; ++byte) {
            field.at(1 + byte) = static_cast<zip_uint8_t>((modified >> (8 * byte)) & 0xFF);
        }
        check(zip_file_extra_field_set(m_zip.get(), index, extendedTimestamp, ZIP_EXTRA_FIELD_NEW,
                                       field.data(), field.size(), ZIP_FL_LOCAL | ZIP_FL_CENTRAL) == 0);
    }

    /// Throws what failed in a source if one did, else that libzip failed.
    void check(bool succeeded) const {
        if (succeeded) {
            return;
        }
        if (m_failure) {
            std::rethrow_exception(m_failure);
        }
        throw std::system_error(Zipper::archiveNotWritten, Zipper::errorDomain());
    }

    std::stop_token m_stop;
    std::exception_ptr m_failure; // of the sources, which m_zip owns
    std::unique_ptr<zip_t, Discard> m_zip;
};

} // namespace

void writeZip(const fs::path& archive, const fs::path& folder, const std::vector<std::string>& files,
              const std::stop_token& stop) {
    Archive zip(archive, stop);
    const std::string top = folder.filename().native() + "/";
    zip.addFolder(top);
    std::unordered_set<std::string> folders;
    for (const std::string& file : files) {
        for (const std::string_view parent : parentFolders(file)) {
            const auto [name, isNew] = folders.emplace(parent);
            if (isNew) {
                zip.addFolder(top + *name + "/");
            }
        }
        zip.addFile(top + file, folder / file);
    }
    zip.close();
}

} // namespace velmora
