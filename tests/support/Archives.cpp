#include "tests/support/Archives.h"

#include "tests/support/Shell.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>

namespace velmora::test {

namespace {

void append(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

/// Appends `value` as `width` bytes, the least significant first.
void append(Bytes& bytes, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

/// The checksum of zip and rar (polynomial 0xEDB88320, reflected).
std::uint32_t crc32(const Bytes& bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
        }
    }
    return ~crc;
}

std::uint32_t crc32(std::string_view text) {
    return crc32(Bytes(text.begin(), text.end()));
}

// ------------------------------------------------------------------------------------------------- tar
//
//   offset width field       (POSIX ustar; numbers are octal text)
//        0   100 name
//      100     8 mode
//      124    12 size
//      148     8 checksum    sum of all bytes of the header, this field counted as blanks
//      156     1 type
//      157   100 link target
//      257     8 "ustar" NUL "00"

constexpr std::size_t tarBlock = 512;

void setText(std::string& header, std::size_t offset, std::string_view text) {
    header.replace(offset, text.size(), text);
}

std::string octal(std::uint64_t value, int digits) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%0*llo", digits, static_cast<unsigned long long>(value));
    return text.data();
}

std::string tarHeader(const Member& member) {
    std::string header(tarBlock, '\0');
    setText(header, 0, member.name);
    setText(header, 100, octal(member.mode, 7));
    setText(header, 124, octal(member.declaredSize.value_or(member.content.size()), 11));
    setText(header, 148, std::string(8, ' '));
    header[156] = member.type;
    setText(header, 157, member.linkTarget);
    setText(header, 257, std::string_view("ustar\00000", 8));
    std::uint64_t sum = 0;
    for (const char byte : header) {
        sum += static_cast<std::uint8_t>(byte);
    }
    setText(header, 148, octal(sum, 6) + '\0');
    return header;
}

// ------------------------------------------------------------------------------------------------- cpio

/// A member's header has this, then 13 numbers of 8 hexadecimal digits: inode, mode, user, group, names,
/// time, size, device (2), device it stands for (2), size of its name with NUL, checksum. Header with name,
/// and content, are each padded to 4 bytes.
constexpr std::string_view cpioMagic = "070701";

mode_t kindOf(char type) {
    switch (type) {
    case '2':
        return S_IFLNK;
    case '3':
        return S_IFCHR;
    case '4':
        return S_IFBLK;
    case '5':
        return S_IFDIR;
    case '6':
        return S_IFIFO;
    case 's':
        return S_IFSOCK;
    default:
        return S_IFREG;
    }
}

void appendCpioMember(Bytes& bytes, std::size_t inode, mode_t mode, const Member& member) {
    const auto pad = [&bytes] { bytes.resize((bytes.size() + 3) / 4 * 4); };
    append(bytes, cpioMagic);
    for (const std::size_t number :
         {inode, std::size_t{mode}, std::size_t{0}, std::size_t{0}, std::size_t{1}, std::size_t{0},
          member.content.size(), std::size_t{0}, std::size_t{0}, std::size_t{1}, std::size_t{5},
          member.name.size() + 1, std::size_t{0}}) {
        std::array<char, 9> digits{};
        std::snprintf(digits.data(), digits.size(), "%08zX", number);
        append(bytes, digits.data());
    }
    append(bytes, member.name);
    bytes.push_back(0);
    pad();
    append(bytes, member.content);
    pad();
}

// ------------------------------------------------------------------------------------------------- zip

/// The part that a zip member's local header and its directory entry have in common.
void appendZipFields(Bytes& bytes, const Member& member, const ZipMaker& maker) {
    append(bytes, 10, 2); // version needed: 1.0
    append(bytes, maker.flags, 2);
    append(bytes, 0, 2);      // method: stored
    append(bytes, 0, 2);      // time
    append(bytes, 0x5821, 2); // date: 2024-01-01
    append(bytes, crc32(member.content), 4);
    append(bytes, member.content.size(), 4);
    append(bytes, member.content.size(), 4);
    append(bytes, member.name.size(), 2);
    append(bytes, 0, 2); // extra field
}

void appendZipDirectoryEntry(Bytes& bytes, const Member& member, std::size_t localHeader,
                             const ZipMaker& maker) {
    append(bytes, "PK\x01\x02");
    bytes.push_back(static_cast<std::uint8_t>(maker.version));
    bytes.push_back(static_cast<std::uint8_t>(maker.system));
    appendZipFields(bytes, member, maker);
    append(bytes, 0, 2);                                                   // comment
    append(bytes, 0, 2);                                                   // disk
    append(bytes, 0, 2);                                                   // internal attributes
    append(bytes, (member.type == '2' ? 0120777U : member.mode) << 16, 4); // permissions, of Unix
    append(bytes, localHeader, 4);
    append(bytes, member.name);
}

// ------------------------------------------------------------------------------------------------- rar

/// A block of a rar archive: the low half of the CRC of what follows it, then type, flags, size, `fields`.
void appendRarBlock(Bytes& bytes, std::uint8_t type, std::uint16_t flags, const Bytes& fields) {
    Bytes block = {type};
    append(block, flags, 2);
    append(block, fields.size() + 7, 2);
    block.insert(block.end(), fields.begin(), fields.end());
    append(bytes, crc32(block) & 0xFFFF, 2);
    bytes.insert(bytes.end(), block.begin(), block.end());
}

constexpr std::uint16_t rarNamesEncrypted = 0x0080;   // flag of the archive
constexpr std::uint16_t rarContentEncrypted = 0x0004; // flags of a member
constexpr std::uint16_t rarContentFollows = 0x8000;
constexpr std::uint8_t rarStored = 0x30; // methods
constexpr std::uint8_t rarCompressed = 0x33;

Bytes rarFileFields(const Member& member, std::uint8_t method) {
    Bytes fields;
    append(fields, member.content.size(), 4); // packed
    append(fields, member.content.size(), 4); // unpacked
    fields.push_back(3);                      // made under Unix
    append(fields, crc32(member.content), 4);
    append(fields, 0x58210000, 4); // 2024-01-01
    fields.push_back(20);          // version needed: 2.0
    fields.push_back(method);
    append(fields, member.name.size(), 2);
    append(fields, 0100644, 4);
    append(fields, member.name);
    return fields;
}

std::string noise(std::size_t size) {
    std::minstd_rand random; // the same each time
    std::string bytes(size, '\0');
    std::ranges::generate(bytes, [&] { return static_cast<char>(random()); });
    return bytes;
}

} // namespace

fs::path pack(const fs::path& archive, const fs::path& folder, std::string_view options) {
    const std::string extension = archive.extension();
    std::string command = "tar --auto-compress -cf ";
    if (extension == ".zip" || extension == ".zipx") {
        command = "zip -qry ";
    } else if (extension == ".7z") {
        command = "7z a -bd -bso0 ";
    } else if (extension == ".tbz") {
        command = "tar --bzip2 -cf ";
    }
    shell(command + std::string(options) + " " + shellWord(archive.native()) + " .", folder);
    return archive;
}

fs::path compress(const fs::path& compressed, std::string_view content) {
    const fs::path plain = write(freshFolder() / "plain", content);
    const std::string extension = compressed.extension();
    const std::string tool = extension == ".gz" ? "gzip" : extension == ".bz2" ? "bzip2" : "xz";
    shell(tool + " -c " + shellWord(plain.native()) + " > " + shellWord(compressed.native()));
    return compressed;
}

fs::path slowArchive(const fs::path& folder) {
    // Packed piece by piece, which is quicker than as a whole: the header, then the same zeros again and
    // again.
    shell(
        "truncate -s 512M slow.wav && tar -cf - slow.wav | head -c 512 | xz > slow.tar.xz && rm slow.wav && "
        "head -c 8M /dev/zero | xz > zeros && for i in $(seq 65); do cat zeros; done >> slow.tar.xz && rm "
        "zeros",
        folder);
    return folder / "slow.tar.xz";
}

Bytes tarArchive(const std::vector<Member>& members) {
    Bytes bytes;
    for (const Member& member : members) {
        append(bytes, tarHeader(member));
        append(bytes, member.content);
        bytes.resize((bytes.size() + tarBlock - 1) / tarBlock * tarBlock);
    }
    bytes.resize(bytes.size() + 2 * tarBlock);
    return bytes;
}

Bytes cpioArchive(const std::vector<Member>& members) {
    Bytes bytes;
    for (const Member& member : members) {
        appendCpioMember(bytes, bytes.size() + 1, kindOf(member.type) | member.mode, member);
    }
    appendCpioMember(bytes, 0, 0, {.name = "TRAILER!!!"});
    return bytes;
}

Bytes zipArchive(const std::vector<Member>& members, const ZipMaker& maker) {
    Bytes bytes;
    Bytes directory;
    for (const Member& member : members) {
        appendZipDirectoryEntry(directory, member, maker.start + bytes.size(), maker);
        append(bytes, "PK\x03\x04");
        appendZipFields(bytes, member, maker);
        append(bytes, member.name);
        append(bytes, member.content);
    }
    const std::size_t directoryStart = maker.start + bytes.size();
    bytes.insert(bytes.end(), directory.begin(), directory.end());
    append(bytes, "PK\x05\x06");
    append(bytes, 0, 4); // disks
    append(bytes, members.size(), 2);
    append(bytes, members.size(), 2);
    append(bytes, directory.size(), 4);
    append(bytes, directoryStart, 4);
    append(bytes, 0, 2); // comment
    return bytes;
}

Bytes rarArchive(const std::vector<Member>& members, RarSecrecy secrecy) {
    const bool isOpen = secrecy == RarSecrecy::open;
    Bytes bytes = {'R', 'a', 'r', '!', 0x1A, 0x07, 0x00};
    appendRarBlock(bytes, 0x73, secrecy == RarSecrecy::contentAndNames ? rarNamesEncrypted : 0, Bytes(6));
    if (secrecy == RarSecrecy::contentAndNames) {
        append(bytes, noise(1000));
        return bytes;
    }
    for (const Member& member : members) {
        const unsigned flags = rarContentFollows | (isOpen ? 0U : rarContentEncrypted);
        appendRarBlock(bytes, 0x74, static_cast<std::uint16_t>(flags),
                       rarFileFields(member, isOpen ? rarStored : rarCompressed));
        append(bytes, isOpen ? member.content : noise(member.content.size()));
    }
    appendRarBlock(bytes, 0x7B, 0x4000, {}); // end of archive
    return bytes;
}

} // namespace velmora::test
