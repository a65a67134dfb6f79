// The window under load: very many files, resets and deaths at any moment.

#include "tests/faults/Extent.h"
#include "tests/support/Archives.h"
#include "tests/support/OtherPrograms.h"
#include "tests/window/WindowTest.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <iostream>
#include <random>

namespace velmora::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class LoadTest : public WindowTest {
protected:
    /// The window's program and its tools.
    std::vector<std::string> programs() const { return programsWorkingIn(desktop.temporary().native()); }

    /// Lets a random time pass.
    void passTime() { QTest::qWait(std::uniform_int_distribution(0, 400)(random)); }

    std::mt19937 random{seed()};
};

/// The most memory that a process ever had, in bytes.
std::int64_t peakMemoryOf(qint64 process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::int64_t kilobytes = 0;
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            status >> kilobytes;
        }
    }
    return kilobytes * 1024;
}

TEST_F(LoadTest, VeryManyFilesAreCounted) {
    const int files = everything() ? 300'000 : 10'000; // of a second each
    constexpr int namesEach = 30'000;                  // a file system allows no more than some 65,000
    for (int i = 0; i < files; ++i) {
        const fs::path album = folder / "set" / std::to_string(i / 1000);
        const fs::path track = album.parent_path() / (std::to_string(i / namesEach) + ".txt");
        if (i % namesEach == 0) {
            fs::rename(tone("set/tone", 1).toStdString(), track);
        }
        fs::create_directories(album);
        fs::create_hard_link(track, album / (std::to_string(i) + ".wav"));
    }
    open();
    const std::int64_t before = peakMemoryOf(velmora->id());
    EXPECT_EQ(startAgain({text(folder / "set")}), 0);
    const QString total = everything() ? "83:20:00" : "02:46:40";
    for (int minute = 1; minute < 10 && !comesTrue([&] { return reader.find(total).has_value(); });
         ++minute) {
    }
    awaitShown(total);
    desktop.press("ctrl+c");
    const QString count = QString::number(files) + " audio files — SET";
    EXPECT_TRUE(comesTrue([&] { return desktop.clipboard().endsWith("\n" + count); }))
        << desktop.clipboard().toStdString();
    const std::int64_t growth = peakMemoryOf(velmora->id()) - before;
    std::cout << files << " files, " << growth / files << " bytes of memory each\n";
    desktop.press("ctrl+q");
    EXPECT_EQ(velmora->wait(), 0);
}

TEST_F(LoadTest, ResetAtAnyMomentLeavesNothing) {
    const int resets = everything() ? 200 : 10;
    for (int i = 0; i < 20; ++i) {
        tone("set/" + std::to_string(i) + ".wav", 1);
    }
    pack(folder / "inner.zip", folder / "set");
    fs::rename(folder / "inner.zip", folder / "set" / "inner.zip");
    const std::vector<QString> sources = {text(folder / "set"), text(pack(folder / "a.tgz", folder / "set")),
                                          text(pack(folder / "b.zip", folder / "set"))};
    open();
    for (int i = 0; i < resets; ++i) {
        EXPECT_EQ(startAgain({sources[random() % sources.size()]}), 0);
        passTime();
        desktop.press("Escape");
    }
    std::cout << resets << " resets, seed " << seed() << "\n";
    EXPECT_TRUE(comesTrue([&] { // what cancelled scans still unpack goes with a later reset
        EXPECT_EQ(startAgain({sources.back()}), 0);
        awaitShown("00:00:40");
        desktop.press("Escape");
        awaitGone("00:00:40");
        return leftovers().empty() && programs().size() == 1;
    })) << testing::PrintToString(leftovers());
}

TEST_F(LoadTest, KilledAtAnyMomentItTakesItsToolsAlong) {
    const int kills = everything() ? 200 : 5;
    const QString archive = text(slowArchive(folder));
    for (int i = 0; i < kills; ++i) {
        velmora = start({archive});
        passTime();
        velmora->send(SIGKILL);
        EXPECT_EQ(velmora->wait(), -1);
        EXPECT_TRUE(comesTrue([this] { return programs().empty(); })) << testing::PrintToString(programs());
    }
    std::cout << kills << " kills of the window, seed " << seed() << "\n";
    open();
    EXPECT_THAT(leftovers(), IsEmpty());
    EXPECT_THAT(privateDirectories(), SizeIs(1));
}

} // namespace
} // namespace velmora::test
