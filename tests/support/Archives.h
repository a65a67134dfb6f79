#pragma once

// Archives for tests. Where a real packer exists it packs; where it would refuse (a name that leads out of
// the archive, a name in an old code page) or does not exist (rar), the bytes are written here.

#include "tests/support/Files.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// Packs everything in `folder` into `archive` with the real tool for its extension: zip, zipx, tar, tgz,
/// tbz, tbz2, txz, 7z. Further `options` go to the tool as they are. Returns `archive`.
fs::path pack(const fs::path& archive, const fs::path& folder, std::string_view options = "");

/// Compresses one file with gzip, bzip2 or xz, by the extension of `compressed`. Returns `compressed`.
fs::path compress(const fs::path& compressed, std::string_view content);

/// Makes slow.tar.xz in `folder`. It holds slow.wav: so many zero bytes that tar takes more than a second to
/// unpack it, and no audio.
fs::path slowArchive(const fs::path& folder);

/// One member of an archive written byte by byte.
struct Member {
    std::string name = {};
    std::string content = {};
    char type = '0';      ///< '0' file, '2' link; of a tar or cpio member also '3', '4' device,
                          ///< '5' folder, '6' FIFO; of a tar member '1' hard link, of a cpio member
                          ///< 's' socket
    unsigned mode = 0644; ///< permissions; a zip archive's hold where its maker is Unix, and then may
                          ///< name a kind of file as st_mode does
    std::string linkTarget =
        {}; ///< of a tar member of type '1' or '2'; a zip or cpio member's is its content
    std::optional<std::uint64_t> declaredSize =
        {}; ///< of a tar member: what its header says, if not the truth
};

/// A tar archive in the ustar format, names as they are.
Bytes tarArchive(const std::vector<Member>& members);

/// A cpio archive in the newc format, names as they are.
Bytes cpioArchive(const std::vector<Member>& members);

/// What a zip archive says of the program that made it. The default is what Windows and Java write.
struct ZipMaker {
    int system = 0;          ///< 0 DOS, 3 Unix, 11 NTFS
    int version = 20;        ///< of the zip format, times ten
    unsigned flags = 0x0800; ///< of every member: names are UTF-8
    std::size_t start = 0;   ///< where the archive begins in its file: what its positions count from
};

/// A zip archive, members stored, names as they are and flagged as UTF-8.
Bytes zipArchive(const std::vector<Member>& members, const ZipMaker& maker = {});

enum class RarSecrecy : std::uint8_t { open, content, contentAndNames };

/// A rar archive (version 4) with its members stored, or with noise in the place of what is encrypted.
Bytes rarArchive(const std::vector<Member>& members, RarSecrecy secrecy = RarSecrecy::open);

} // namespace velmora::test
