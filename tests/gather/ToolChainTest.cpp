// Archives that are one thing to one tool and another to the next: the first leaves a link and fails, and the
// next would write through it. Whatever they hold, nothing beside the extraction directory changes.

#include "gather/ArchiveExtraction.h"
#include "tests/gather/Found.h"
#include "tests/support/Archives.h"
#include "tests/support/Shell.h"
#include "tests/support/Snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {

namespace {

using Collector::extract;
using test::Bytes;
using test::freshFolder;
using test::Member;
using test::write;
namespace fs = std::filesystem;

/// A folder that an archive aims at, and two names that lead there from an extraction directory.
struct Target {
    fs::path folder = freshFolder();
    std::string absolute = folder;
    std::string relative = "../" + folder.lexically_relative(fs::temp_directory_path()).native();

    Target() {
        write(folder / "victim.wav", "untouched");
        write(folder / "inner" / "victim.wav", "untouched");
    }
};

/// When unzip reads the archive: before bsdtar, or after it because it would garble a name.
enum class Order : std::uint8_t { tarUnzip, tarBsdtarUnzip };

/// A tar archive that ends in bytes no tar understands, then a zip archive: tar unpacks all of its own and
/// fails, unzip unpacks all of its own and succeeds.
Bytes tarThenZip(const std::vector<Member>& planted, std::vector<Member> written, Order order) {
    Bytes bytes = test::tarArchive(planted);
    bytes.resize(bytes.size() - 1024);
    bytes.resize(bytes.size() + 1024, 'x');
    if (order == Order::tarBsdtarUnzip) {
        written.push_back({.name = "Füße.txt", .content = "x"});
    }
    // DOS makes unzip garble names that are not ASCII; Unix makes it restore permissions.
    const test::ZipMaker maker{.system = order == Order::tarUnzip ? 3 : 0, .start = bytes.size()};
    const Bytes zip = test::zipArchive(written, maker);
    bytes.insert(bytes.end(), zip.begin(), zip.end());
    return bytes;
}

void PrintTo(Order order, std::ostream* out) {
    *out << (order == Order::tarUnzip ? "TarUnzip" : "TarBsdtarUnzip");
}

struct Chain {
    const char* name;
    std::vector<Member> (*planted)(const Target&);
    std::vector<Member> written;
};

void PrintTo(const Chain& chain, std::ostream* out) {
    *out << chain.name;
}

std::vector<Member> link(const std::string& name, const std::string& to) {
    return {{.name = name, .type = '2', .linkTarget = to}};
}

const std::vector<Chain> chains = {
    {"AbsoluteFolder",
     [](const Target& to) { return link("link", to.absolute); },
     {{.name = "link/evil.wav", .content = "x"}}},
    {"RelativeFolder",
     [](const Target& to) { return link("link", to.relative); },
     {{.name = "link/evil.wav", .content = "x"}}},
    {"FileInAFolder",
     [](const Target& to) { return link("link", to.absolute); },
     {{.name = "link/victim.wav", .content = "x"}}},
    {"HiddenFile",
     [](const Target& to) { return link("link", to.absolute); },
     {{.name = "link/.bashrc", .content = "x"}}},
    {"NewFolder",
     [](const Target& to) { return link("link", to.absolute); },
     {{.name = "link/new/evil.wav", .content = "x"}}},
    {"InnerFolder",
     [](const Target& to) { return link("link", to.absolute); },
     {{.name = "link/inner/victim.wav", .content = "x"}}},
    {"LinkInAFolder",
     [](const Target& to) {
         return std::vector<Member>{{.name = "a/b/", .type = '5', .mode = 0755},
                                    {.name = "a/b/link", .type = '2', .linkTarget = to.absolute}};
     },
     {{.name = "a/b/link/evil.wav", .content = "x"}}},
    {"LinkInAClosedFolder",
     [](const Target& to) {
         return std::vector<Member>{{.name = "a/", .type = '5', .mode = 0111},
                                    {.name = "a/link", .type = '2', .linkTarget = to.absolute}};
     },
     {{.name = "a/link/evil.wav", .content = "x"}}},
    {"LinkToALink",
     [](const Target& to) {
         return std::vector<Member>{{.name = "second", .type = '2', .linkTarget = to.absolute},
                                    {.name = "first", .type = '2', .linkTarget = "second"}};
     },
     {{.name = "first/evil.wav", .content = "x"}}},
    {"LinkUpwards",
     [](const Target&) { return link("link", ".."); },
     {{.name = "link/evil.wav", .content = "x"}}},
};

class ToolChain : public testing::TestWithParam<std::tuple<Chain, Order>> {};

TEST_P(ToolChain, WritesNothingThroughALinkThatTheToolBeforeLeft) {
    const auto& [chain, order] = GetParam();
    const Target target;
    const fs::path archive =
        write(freshFolder() / "set.zip", tarThenZip(chain.planted(target), chain.written, order));
    const test::Snapshot before = test::snapshotOf(target.folder);
    extract(archive);
    EXPECT_EQ(test::snapshotOf(target.folder), before);
    EXPECT_FALSE(fs::exists(fs::temp_directory_path() / "evil.wav"));
}

INSTANTIATE_TEST_SUITE_P(All, ToolChain,
                         testing::Combine(testing::ValuesIn(chains),
                                          testing::Values(Order::tarUnzip, Order::tarBsdtarUnzip)),
                         [](const testing::TestParamInfo<std::tuple<Chain, Order>>& row) {
                             return std::get<0>(row.param).name + std::string("_") +
                                    testing::PrintToString(std::get<1>(row.param));
                         });

TEST(ToolChainWithAMemberOfItsOwn, WritesNothingThroughALinkThatUnzipLeft) {
    // unzip passes over members of the method LZMA, makes the link at its end, and fails; bsdtar reads them.
    for (const bool relative : {false, true}) {
        const Target target;
        const fs::path folder = freshFolder();
        test::shell(R"(python3 -B - <<'EOF'
import zipfile
def entry(name, mode, system=3):
    info = zipfile.ZipInfo(name)
    info.create_system, info.external_attr = system, mode << 16
    return info
with zipfile.ZipFile("set.zip", "w") as archive:
    archive.writestr(entry("link", 0o120777), ")" +
                        (relative ? target.relative : target.absolute) + R"(")
    archive.writestr(entry("link/", 0o40711), "")
    archive.writestr(entry("link/victim.wav", 0o100644), "x" * 100, zipfile.ZIP_LZMA)
    archive.writestr(entry("file", 0o120777), ")" +
                        (target.folder / "victim.wav").native() + R"(")
    archive.writestr(entry("file", 0o100600), "x" * 100, zipfile.ZIP_LZMA)
EOF
)",
                    folder);
        const test::Snapshot before = test::snapshotOf(target.folder);
        extract(folder / "set.zip");
        EXPECT_EQ(test::snapshotOf(target.folder), before) << (relative ? "relative" : "absolute");
    }
}

TEST(ToolChainWithAMemberOfItsOwn, WritesIntoNoHardLinkAndNoFifoThatTarLeft) {
    const Target target;
    const fs::path archive = write(
        freshFolder() / "set.zip",
        tarThenZip({{.name = "one.wav", .content = "tar"},
                    {.name = "two.wav", .type = '1', .linkTarget = "one.wav"},
                    {.name = "fifo", .type = '6'},
                    {.name = "kept.wav", .content = "tar"}},
                   {{.name = "one.wav", .content = "zip"}, {.name = "fifo/three.wav", .content = "zip"}},
                   Order::tarUnzip));
    const std::optional<fs::path> directory = extract(archive).directory;
    ASSERT_TRUE(directory);
    EXPECT_EQ(test::filesBelow(*directory),
              (std::vector<std::string>{"fifo/three.wav", "kept.wav", "one.wav"}));
    EXPECT_EQ(test::read(*directory / "one.wav"), "zip");
}

} // namespace

} // namespace velmora
