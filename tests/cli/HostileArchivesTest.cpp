// Archives made to do harm, met by a whole scan: it tells what is in them or names them, measures the file
// beside, changes nothing around and leaves nothing.

#include "tests/cli/HostileArchives.h"

#include "tests/cli/ScanProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace velmora::test {
namespace {

using testing::IsEmpty;

class HostileArchiveScan : public testing::TestWithParam<HostileArchive> {
protected:
    static constexpr AudioShape threeSeconds{.frames = 24'000, .rate = 8'000, .channels = 1};

    HostileArchiveScan() {
        fs::create_directory(set);
        fs::create_hard_link(aim.victim, outside / "second.wav");
    }

    const fs::path folder = freshFolder();
    const fs::path set = folder / "set";
    const fs::path outside = folder / "outside";
    const fs::path next = writeWav(folder / "next.wav", oneSecond);
    const fs::path temporary = freshFolder();
    const Aim aim{.set = set,
                  .outside = outside,
                  .victim = writeWav(outside / "victim.wav", threeSeconds),
                  .song = read(next),
                  .upwards = "../../" + outside.lexically_relative(temporary).native()};
};

std::vector<std::string> linesIn(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST_P(HostileArchiveScan, IsRightAndHarmsNobody) {
    GetParam().make(aim);
    const Snapshot before = snapshotOf(folder);

    const Finished run =
        runToEnd({.arguments = {"--files", set, next}, .environment = {{"TMPDIR", temporary}}});

    EXPECT_EQ(snapshotOf(folder), before);
    EXPECT_THAT(namesIn(temporary), IsEmpty());
    EXPECT_EQ(run.status, GetParam().complaints == 0 ? 0 : 1) << run.errors;
    EXPECT_THAT(linesIn(run.errors), testing::SizeIs(GetParam().complaints)) << run.errors;
    const std::vector<std::string> lines = linesIn(run.output);
    const auto isSong = [](const std::string& line) { return line.starts_with("1.000\t"); };
    EXPECT_EQ(std::ranges::count_if(lines, isSong), GetParam().songs + 1) << run.output;
    EXPECT_TRUE(std::ranges::all_of(lines, [&](const std::string& line) {
        return isSong(line) || line.starts_with("-\t"); // nothing of the user's is measured
    })) << run.output;
    EXPECT_THAT(lines, testing::Contains("1.000\t" + next.native()));
}

INSTANTIATE_TEST_SUITE_P(Rows, HostileArchiveScan, testing::ValuesIn(hostileArchives()),
                         &rowName<HostileArchive>);

} // namespace
} // namespace velmora::test
