#include "gather/GarbledZipNames.h"

#include "system/RegularFile.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace velmora::Collector {

namespace {

// The layouts, from PKWARE's APPNOTE 6.3.3. Numbers begin with their lowest byte.
//
//   End record (4.3.16), last in the file       Entry of the directory (4.3.12)
//   offset width field                          offset width field
//        0     4 "PK" 5 6                            0     4 "PK" 1 2
//       12     4 size of the directory               4     1 version of the maker
//       16     4 position of the directory           5     1 system of the maker
//       20     2 length of the comment               8     2 flags
//       22       comment                            28     2 length of the name
//                                                   30     2 length of the extra field
//                                                   32     2 length of the comment
//                                                   46       name, extra field, comment

using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view endSignature = "PK\x05\x06";
constexpr std::string_view entrySignature = "PK\x01\x02";
constexpr std::size_t endRecordSize = 22;
constexpr std::size_t maxCommentSize = 0xFFFF;
constexpr std::size_t entryHeaderSize = 46;
constexpr std::size_t maxDirectorySize = std::size_t{1} << 20; // the rest is not read
constexpr unsigned utf8Names = 1U << 11;

std::uint32_t number(std::span<const std::uint8_t> bytes, std::size_t at, int width) {
    std::uint32_t value = 0;
    for (int i = width - 1; i >= 0; --i) {
        value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    }
    return value;
}

/// Up to `size` bytes of `file` from `offset`; fewer at its end, none after an error.
Bytes bytesAt(const RegularFile& file, std::int64_t offset, std::size_t size) {
    Bytes bytes(size);
    bytes.resize(file.readAt(offset, bytes).value_or(0));
    return bytes;
}

bool beginsWithEntry(const Bytes& bytes) {
    return bytes.size() >= entrySignature.size() &&
           std::equal(entrySignature.begin(), entrySignature.end(), bytes.begin());
}

/// The central directory; empty if there is none. It stands where the end record says, or, in an archive with
/// other bytes before it, immediately before the end record.
Bytes directoryOf(const RegularFile& file) {
    const std::int64_t tailSize =
        std::min(file.size(), static_cast<std::int64_t>(endRecordSize + maxCommentSize));
    const Bytes tail = bytesAt(file, file.size() - tailSize, static_cast<std::size_t>(tailSize));
    const auto end = std::find_end(tail.begin(), tail.end(), endSignature.begin(), endSignature.end());
    const std::span<const std::uint8_t> record(end, tail.end());
    if (record.size() < endRecordSize) {
        return {};
    }
    const std::size_t size = number(record, 12, 4);
    const std::size_t shownSize = std::min(size, maxDirectorySize);
    Bytes directory = bytesAt(file, number(record, 16, 4), shownSize);
    if (!beginsWithEntry(directory)) {
        const auto recordStart = file.size() - static_cast<std::int64_t>(record.size());
        directory = bytesAt(file, recordStart - static_cast<std::int64_t>(size), shownSize);
    }
    return directory;
}

bool isTakenForCodePage(unsigned system, unsigned version) {
    constexpr unsigned fat = 0;
    constexpr unsigned hpfs = 6;
    constexpr unsigned ntfs = 11;
    return system == fat || system == hpfs || (system == ntfs && version == 50);
}

} // namespace

bool unzipGarblesNames(const std::filesystem::path& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    if (!file) {
        return false;
    }
    const Bytes directory = directoryOf(*file);
    std::span<const std::uint8_t> entry = directory;
    while (entry.size() >= entryHeaderSize &&
           std::equal(entrySignature.begin(), entrySignature.end(), entry.begin())) {
        const std::size_t nameSize = number(entry, 28, 2);
        const std::size_t size = entryHeaderSize + nameSize + number(entry, 30, 2) + number(entry, 32, 2);
        if (size > entry.size()) {
            break;
        }
        const auto name = entry.subspan(entryHeaderSize, nameSize);
        if ((number(entry, 8, 2) & utf8Names) != 0 && isTakenForCodePage(entry[5], entry[4]) &&
            std::any_of(name.begin(), name.end(), [](std::uint8_t byte) { return byte >= 0x80; })) {
            return true;
        }
        entry = entry.subspan(size);
    }
    return false;
}

} // namespace velmora::Collector
