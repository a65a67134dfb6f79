// What one tool leaves, and the next makes of it: no member is unpacked twice, none is lost.

#include "gather/ArchiveExtraction.h"
#include "tests/gather/Found.h"
#include "tests/support/Archives.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {

namespace {

using Collector::extract;
using test::compress;
using test::filesBelow;
using test::freshFolder;
using test::Member;
using test::sound;
using test::write;
namespace fs = std::filesystem;

void expectFiles(const fs::path& archive, const std::vector<std::string>& names) {
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory) << archive;
    EXPECT_EQ(filesBelow(*directory), names) << archive;
}

TEST(ExtractionAttempts, DecompressesAFileThatBeginsLikeAnEmptyTar) {
    const std::string quietStart = std::string(1024, '\0') + sound;
    const fs::path folder = freshFolder();
    expectFiles(compress(folder / "take.wav.gz", quietStart), {"take.wav"});
    expectFiles(compress(folder / "take.wav.bz2", quietStart), {"take.wav"});
}

TEST(ExtractionAttempts, UnpacksAnEmptyTar) {
    const fs::path folder = freshFolder();
    test::shell("for kind in gzip bzip2 xz; do tar -c --$kind -f $kind -T /dev/null; done", folder);
    expectFiles(write(folder / "a.tar", test::tarArchive({})), {});
    fs::rename(folder / "gzip", folder / "a.tgz");
    fs::rename(folder / "xz", folder / "a.tar.xz");
    fs::rename(folder / "bzip2", folder / "a.tar.bz2");
    expectFiles(folder / "a.tgz", {});
    expectFiles(folder / "a.tar.xz", {});
    expectFiles(folder / "a.tar.bz2", {"a.tar"});
}

/// A zip archive of two members, whose names tools read in different ways.
void expectEachMemberOnce(const fs::path& archive, std::size_t members) {
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory) << archive;
    EXPECT_THAT(filesBelow(*directory), testing::SizeIs(members)) << archive;
}

TEST(ExtractionAttempts, UnpacksEachMemberOnceWhateverItsNameTurnsInto) {
    const std::vector<Member> members = {{.name = "Disc\\F\x81\xDF"
                                                  "e.wav",
                                          .content = sound},
                                         {.name = "Disc\\Füße.wav", .content = sound}};
    const fs::path folder = freshFolder();
    expectEachMemberOnce(write(folder / "dos.zip", test::zipArchive(members, {.flags = 0})), 2);
    test::Bytes shifted(80, 'x');
    const test::Bytes zip = test::zipArchive({{.name = "Füße.wav", .content = sound}});
    shifted.insert(shifted.end(), zip.begin(), zip.end());
    expectEachMemberOnce(write(folder / "shifted.zip", shifted), 1);
}

TEST(ExtractionAttempts, MixesNothingWithWhatAFailedToolMade) {
    // bsdtar cannot unpack the method of the first member but the others, and unzip all of them, under other
    // names.
    const fs::path folder = freshFolder();
    const fs::path archive =
        write(folder / "a.zip", test::zipArchive({{.name = "Füße 1.wav", .content = sound},
                                                  {.name = "Füße 2.wav", .content = sound}}));
    test::shell(
        "head -c 300000 /dev/zero | tr '\\\\0' 'a' > large.wav; 7z a -bso0 -bd -mm=Deflate64 a.zip large.wav",
        folder);
    expectEachMemberOnce(archive, 3);
}

} // namespace

} // namespace velmora
