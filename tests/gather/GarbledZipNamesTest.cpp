#include "gather/GarbledZipNames.h"

#include "tests/support/Archives.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

namespace velmora {

namespace {

using Collector::unzipGarblesNames;
using test::freshFolder;
using test::Member;
using test::write;
namespace fs = std::filesystem;

const std::vector<Member> members = {{.name = "01.wav", .content = "x"}, {.name = "Füße.wav"}};

TEST(GarbledZipNames, AgreesWithUnzip) {
    struct Row {
        test::ZipMaker maker;
        bool garbled;
    };

    const std::vector<Row> rows = {
        {{.system = 0, .version = 20}, true},   {{.system = 0, .version = 45}, true},
        {{.system = 0, .version = 63}, true},   {{.system = 3, .version = 30}, false},
        {{.system = 6, .version = 20}, true},   {{.system = 10, .version = 63}, false},
        {{.system = 11, .version = 45}, false}, {{.system = 11, .version = 50}, true},
        {{.system = 11, .version = 63}, false}, {{.system = 19, .version = 20}, false},
    };
    for (const Row& row : rows) {
        const fs::path folder = freshFolder();
        const fs::path zip = write(folder / "a.zip", test::zipArchive(members, row.maker));
        test::shell("LC_ALL=C.UTF-8 unzip -qq a.zip", folder);
        EXPECT_EQ(!fs::exists(folder / "Füße.wav"), row.garbled)
            << row.maker.system << " " << row.maker.version;
        EXPECT_EQ(unzipGarblesNames(zip), row.garbled) << row.maker.system << " " << row.maker.version;
    }
}

TEST(GarbledZipNames, AsciiIsNeverGarbled) {
    EXPECT_FALSE(unzipGarblesNames(write(freshFolder() / "a.zip", test::zipArchive({{.name = "01.wav"}}))));
    EXPECT_FALSE(unzipGarblesNames(write(freshFolder() / "a.zip", test::zipArchive({}))));
}

TEST(GarbledZipNames, PassesOverWhatFollowsAName) {
    const fs::path folder = freshFolder();
    test::shell(R"(python3 -B - <<'EOF'
import zipfile
with zipfile.ZipFile("a.zip", "w") as archive:
    for name in "01.wav", "Füße.wav":
        info = zipfile.ZipInfo(name)
        info.create_system, info.extra, info.comment = 0, b"\x99\x99\x04\x00abcd", b"a comment"
        archive.writestr(info, "x")
EOF
)",
                folder);
    EXPECT_TRUE(unzipGarblesNames(folder / "a.zip"));
}

TEST(GarbledZipNames, FindsTheDirectoryBeforeAComment) {
    test::Bytes bytes = test::zipArchive(members);
    bytes[bytes.size() - 1] = 0xFF; // length of the comment
    bytes[bytes.size() - 2] = 0xFF;
    bytes.resize(bytes.size() + 0xFFFF, 'c');
    EXPECT_TRUE(unzipGarblesNames(write(freshFolder() / "a.zip", bytes)));
}

TEST(GarbledZipNames, FindsTheDirectoryAfterOtherBytes) {
    for (const std::size_t start : {1U, 80U, 100000U}) {
        test::Bytes bytes(start, 'x');
        const test::Bytes zip = test::zipArchive(members);
        bytes.insert(bytes.end(), zip.begin(), zip.end());
        EXPECT_TRUE(unzipGarblesNames(write(freshFolder() / "a.zip", bytes))) << start;
    }
}

TEST(GarbledZipNames, LooksAtAMegabyteOfTheDirectory) {
    constexpr std::size_t entryBytes = 46 + 78;
    std::vector<Member> many((std::size_t{1} << 20) / entryBytes - 1, {.name = std::string(78, 'x')});
    many.push_back(members.back());
    const fs::path path = freshFolder() / "a.zip";
    EXPECT_TRUE(unzipGarblesNames(write(path, test::zipArchive(many))));
    many.insert(many.begin(), {.name = std::string(78, 'x')});
    EXPECT_FALSE(unzipGarblesNames(write(path, test::zipArchive(many))));
}

TEST(GarbledZipNames, SaysNothingOfOtherFiles) {
    const fs::path folder = freshFolder();
    EXPECT_FALSE(unzipGarblesNames(folder / "missing.zip"));
    EXPECT_FALSE(unzipGarblesNames(folder));
    EXPECT_FALSE(unzipGarblesNames(write(folder / "empty.zip")));
    EXPECT_FALSE(unzipGarblesNames(write(folder / "a.tar", test::tarArchive(members))));
}

TEST(GarbledZipNames, SurvivesEveryCutAndEveryFlippedByte) {
    const test::Bytes whole = test::zipArchive(members);
    const fs::path path = freshFolder() / "a.zip";
    ASSERT_TRUE(unzipGarblesNames(write(path, whole)));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const test::Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(unzipGarblesNames(write(path, cut))) << size;
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        test::Bytes flipped = whole;
        flipped[at] ^= 0xFF;
        unzipGarblesNames(write(path, flipped)); // any answer, but an answer
    }
}

} // namespace

} // namespace velmora
