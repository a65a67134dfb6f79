#include "tests/cli/HostileArchives.h"

#include "tests/support/Archives.h"
#include "tests/support/Shell.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

namespace velmora::test {

namespace {

using Members = std::vector<Member>;

/// What Unix's zip says of itself: the kind and permissions of its members hold.
constexpr ZipMaker unixZip{.system = 3};

void tar(const Aim& aim, const Members& members) {
    write(aim.set / "harm.tar", tarArchive(members));
}

void zip(const Aim& aim, const Members& members, const ZipMaker& maker = {}) {
    write(aim.set / "harm.zip", zipArchive(members, maker));
}

/// A cpio archive named as tar, which bsdtar alone reads.
void cpio(const Aim& aim, const Members& members) {
    write(aim.set / "harm.tar", cpioArchive(members));
}

/// Makes an archive by a script for Python that finds the song's content in `song`. It works in the set.
void python(const Aim& aim, std::string_view script) {
    const fs::path song = write(freshFolder() / "song.wav", aim.song);
    shell("python3 -B - <<'EOF'\nimport io, struct, tarfile, zipfile\nsong = open('" + song.native() +
              "', 'rb').read()\n" + std::string(script) + "\nEOF\n",
          aim.set);
}

// ------------------------------------------------------------------------------------- paths that lead out

Members absolute(const Aim& aim) {
    return {{.name = aim.outside / "evil.wav", .content = aim.song},
            {.name = aim.victim, .content = aim.song}};
}

Members climbing(const Aim& aim) {
    return {{.name = aim.upwards + "/evil.wav", .content = aim.song},
            {.name = "a/../../evil.wav", .content = aim.song},
            {.name = "a.wav", .content = aim.song}};
}

// ------------------------------------------------------------------------------------- links that lead out

Members linkAndThrough(const Aim& aim, const std::string& target) {
    return {{.name = "link", .type = '2', .linkTarget = target},
            {.name = "link/evil.wav", .content = aim.song},
            {.name = "file.wav", .type = '2', .linkTarget = target + "/victim.wav"},
            {.name = "file.wav", .content = aim.song},
            {.name = "a.wav", .content = aim.song}};
}

/// As zip and cpio archives hold links: the target is the content.
Members linksAsContent(const Aim& aim) {
    return {{.name = "link", .content = aim.outside, .type = '2'},
            {.name = "private.wav", .content = aim.victim, .type = '2'},
            {.name = "a.wav", .content = aim.song}};
}

Members hardLinks(const Aim& aim, const std::string& target) {
    return {{.name = "a.wav", .content = aim.song},
            {.name = "hard.wav", .type = '1', .linkTarget = target + "/victim.wav"},
            {.name = "hard.wav", .content = aim.song}};
}

/// By the real tool, which writes the whole path of the file into the archive.
void hardLinksByTar(const Aim& aim) {
    shell("tar -P -cf harm.tar " + shellWord(aim.victim.native()) + " " +
              shellWord((aim.outside / "second.wav").native()) + " && tar -P --delete -f harm.tar " +
              shellWord(aim.victim.native()),
          aim.set);
}

void linksBy7z(const Aim& aim) {
    const fs::path folder = freshFolder();
    write(folder / "a.wav", aim.song);
    fs::create_symlink(aim.outside, folder / "link");
    fs::create_symlink(aim.victim, folder / "private.wav");
    shell("7z a -bd -bso0 -snl " + shellWord((aim.set / "harm.7z").native()) + " .", folder);
}

/// A list of files as mtree writes it, which bsdtar takes for an archive: it would read them where they are.
void listOfTheUsersFiles(const Aim& aim) {
    write(aim.set / "harm.tar",
          "#mtree\n./private.wav type=file size=" + std::to_string(fs::file_size(aim.victim)) +
              " contents=" + aim.victim.native() + "\n");
}

// ------------------------------------------------------------------------------- what is no file or folder

Members withNode(const Aim& aim, char type, const std::string& name) {
    return {{.name = "a.wav", .content = aim.song}, {.name = name, .type = type}};
}

Members zipWithNode(const Aim& aim, mode_t kind) {
    return {{.name = "a.wav", .content = aim.song}, {.name = "node.wav", .mode = kind | 0644}};
}

Members setuid(const Aim& aim) {
    return {{.name = "a.wav", .content = aim.song, .mode = 06755},
            {.name = "folder/", .type = '5', .mode = 07777},
            {.name = "folder/b.wav", .content = aim.song, .mode = 04777}};
}

// ---------------------------------------------------------------------------------------- closed and deep

Members closed(const Aim& aim) {
    return {{.name = "./", .type = '5', .mode = 0},
            {.name = "./a.wav", .content = aim.song, .mode = 0},
            {.name = "./closed/", .type = '5', .mode = 0},
            {.name = "./closed/inner/", .type = '5', .mode = 0},
            {.name = "./closed/inner/b.wav", .content = aim.song, .mode = 0}};
}

std::string name(std::size_t length) {
    return std::string(length, 'n');
}

std::string deepTar(int levels, std::string_view folder) {
    return "name = '" + std::string(folder) + "/' * " + std::to_string(levels) + R"( + 'a.wav'
with tarfile.open('harm.tar', 'w') as archive:
    info = tarfile.TarInfo(name)
    info.size = len(song)
    archive.addfile(info, io.BytesIO(song)))";
}

std::string deepZip(int levels, std::string_view folder) {
    return "name = '" + std::string(folder) + "/' * " + std::to_string(levels) + R"( + 'a.wav'
with zipfile.ZipFile('harm.zip', 'w') as archive:
    archive.writestr(name, song))";
}

/// So many entries, of which the last is a song. The others are one folder, again and again, so that it takes
/// little time.
std::string manyEntries(int count) {
    return "import warnings\nwarnings.simplefilter('ignore')\n"
           "with zipfile.ZipFile('harm.zip', 'w') as archive:\n"
           "    for _ in range(1, " +
           std::to_string(count) + R"():
        archive.writestr('folder/', b'')
    archive.writestr('last.wav', song))";
}

// --------------------------------------------------------------------------------- the archive in the
// archive

void quine(const Aim& aim, const std::string& name, const std::string& made) {
    shell("python3 -B " + shellWord(QUINE) + " " + name + " && [ " + name + " = " + made + " ] || mv " +
              name + " " + made,
          aim.set);
}

/// Two entries of the directory for one member, which is one song.
void overlapping(const Aim& aim) {
    Bytes bytes =
        zipArchive({{.name = "a.wav", .content = aim.song}, {.name = "b.wav", .content = aim.song}});
    constexpr std::string_view entry = "PK\x01\x02";
    const auto second = std::find_end(bytes.begin(), bytes.end(), entry.begin(), entry.end());
    std::fill_n(second + 42, 4, std::uint8_t{0}); // where the member begins
    write(aim.set / "harm.zip", bytes);
}

// --------------------------------------------------------------------------------------------------- names

Members named(const Aim& aim, const std::string& name) {
    return {{.name = name, .content = aim.song}, {.name = "next.wav", .content = aim.song}};
}

} // namespace

const std::vector<HostileArchive>& hostileArchives() {
    using namespace std::string_literals;
    static const std::vector<HostileArchive> rows = {
        {{"AbsolutePathsInTar"}, [](const Aim& aim) { tar(aim, absolute(aim)); }, 2},
        {{"AbsolutePathsInZip"}, [](const Aim& aim) { zip(aim, absolute(aim)); }, 2},
        {{"AbsolutePathsInCpio"}, [](const Aim& aim) { cpio(aim, absolute(aim)); }, 2},
        {{"ClimbingPathsInTar"}, [](const Aim& aim) { tar(aim, climbing(aim)); }, 0, 1},
        {{"ClimbingPathsInZip"}, [](const Aim& aim) { zip(aim, climbing(aim)); }, 3},
        {{"ClimbingPathsInCpio"}, [](const Aim& aim) { cpio(aim, climbing(aim)); }, 0, 1},
        {{"LinksInTar"}, [](const Aim& aim) { tar(aim, linkAndThrough(aim, aim.outside)); }, 0, 1},
        {{"LinksUpwardsInTar"}, [](const Aim& aim) { tar(aim, linkAndThrough(aim, aim.upwards)); }, 0, 1},
        {{"LinksInZip"}, [](const Aim& aim) { zip(aim, linksAsContent(aim), unixZip); }, 1},
        {{"LinksInCpio"}, [](const Aim& aim) { cpio(aim, linksAsContent(aim)); }, 1},
        {{"LinksIn7z"}, &linksBy7z, 1},
        {{"HardLinks"}, [](const Aim& aim) { tar(aim, hardLinks(aim, aim.outside)); }, 0, 1},
        {{"HardLinksUpwards"}, [](const Aim& aim) { tar(aim, hardLinks(aim, aim.upwards)); }, 0, 1},
        {{"HardLinksByTar"}, &hardLinksByTar, 0, 1},
        {{"ListOfTheUsersFiles"}, &listOfTheUsersFiles, 0, 1},

        {{"Fifo"}, [](const Aim& aim) { tar(aim, withNode(aim, '6', "node.wav")); }, 1},
        {{"FifoNamedAsArchive"}, [](const Aim& aim) { tar(aim, withNode(aim, '6', "node.zip")); }, 1},
        {{"CharacterDevice"}, [](const Aim& aim) { tar(aim, withNode(aim, '3', "node.wav")); }, 0, 1},
        {{"BlockDevice"}, [](const Aim& aim) { tar(aim, withNode(aim, '4', "node.wav")); }, 0, 1},
        {{"FifoInCpio"}, [](const Aim& aim) { cpio(aim, withNode(aim, '6', "node.wav")); }, 1},
        {{"CharacterDeviceInCpio"}, [](const Aim& aim) { cpio(aim, withNode(aim, '3', "node.wav")); }, 0, 1},
        {{"BlockDeviceInCpio"}, [](const Aim& aim) { cpio(aim, withNode(aim, '4', "node.wav")); }, 0, 1},
        {{"SocketInCpio"}, [](const Aim& aim) { cpio(aim, withNode(aim, 's', "node.wav")); }, 1, 1},
        {{"FifoInZip"}, [](const Aim& aim) { zip(aim, zipWithNode(aim, S_IFIFO), unixZip); }, 1, 1},
        {{"DeviceInZip"}, [](const Aim& aim) { zip(aim, zipWithNode(aim, S_IFCHR), unixZip); }, 1, 1},
        {{"SocketInZip"}, [](const Aim& aim) { zip(aim, zipWithNode(aim, S_IFSOCK), unixZip); }, 1, 1},
        {{"SetuidInTar"}, [](const Aim& aim) { tar(aim, setuid(aim)); }, 2},
        {{"SetuidInZip"}, [](const Aim& aim) { zip(aim, setuid(aim), unixZip); }, 2},

        {{"ClosedTopInTar"}, [](const Aim& aim) { tar(aim, closed(aim)); }, 2},
        {{"ClosedTopInCpio"}, [](const Aim& aim) { cpio(aim, closed(aim)); }, 2},
        {{"ThousandLevelsInTar"}, [](const Aim& aim) { python(aim, deepTar(1000, "d")); }, 1},
        {{"ThousandLevelsInZip"}, [](const Aim& aim) { python(aim, deepZip(1000, "d")); }, 1},
        {{"PathOf4065BytesInTar"}, [](const Aim& aim) { python(aim, deepTar(20, name(202))); }, 0, 1},
        {{"PathOf4065BytesInZip"}, [](const Aim& aim) { python(aim, deepZip(20, name(202))); }, 0, 1},
        {{"PathOf5125BytesInTar"}, [](const Aim& aim) { python(aim, deepTar(20, name(255))); }, 0, 1},
        {{"PathOf5125BytesInZip"}, [](const Aim& aim) { python(aim, deepZip(20, name(255))); }, 0, 1},

        {{"Entries65535"}, [](const Aim& aim) { python(aim, manyEntries(65'535)); }, 1},
        {{"Entries65536"}, [](const Aim& aim) { python(aim, manyEntries(65'536)); }, 1},
        {{"Entries65537"}, [](const Aim& aim) { python(aim, manyEntries(65'537)); }, 1},

        {{"QuineOfZip"}, [](const Aim& aim) { quine(aim, "harm.zip", "harm.zip"); }, 0, 1},
        {{"QuineOfGzip"}, [](const Aim& aim) { quine(aim, "a.gz", "harm.gz.gz.gz.gz.gz"); }, 0, 1},
        {{"OverlappingEntries"}, &overlapping, 1},

        {{"NoUtf8InTar"}, [](const Aim& aim) { tar(aim, named(aim, "caf\xE9\xFF.wav")); }, 2},
        {{"NoUtf8InZip"}, [](const Aim& aim) { zip(aim, named(aim, "caf\xE9\xFF.wav")); }, 2},
        {{"BackslashesInTar"}, [](const Aim& aim) { tar(aim, named(aim, "up\\..\\..\\evil.wav")); }, 2},
        {{"BackslashesInZip"}, [](const Aim& aim) { zip(aim, named(aim, "up\\..\\..\\evil.wav")); }, 0, 1},
        {{"NulInZip"}, [](const Aim& aim) { zip(aim, named(aim, "a.wav\0.txt"s)); }, 2},
        {{"NoNameInTar"}, [](const Aim& aim) { tar(aim, named(aim, "")); }, 0, 1},
        {{"NoNameInZip"}, [](const Aim& aim) { zip(aim, named(aim, "")); }, 0, 1},
        {{"DotsInZip"}, [](const Aim& aim) { zip(aim, named(aim, "..")); }, 1},
        {{"NameOf255Bytes"}, [](const Aim& aim) { zip(aim, named(aim, name(251) + ".wav")); }, 2},
        {{"NameOf256Bytes"}, [](const Aim& aim) { zip(aim, named(aim, name(252) + ".wav")); }, 0, 1},
        {{"ControlCharacters"}, [](const Aim& aim) { tar(aim, named(aim, "\x1B[2J\x07.wav")); }, 2},
    };
    return rows;
}

} // namespace velmora::test
