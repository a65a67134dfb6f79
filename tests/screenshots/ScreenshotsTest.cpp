// Every test runs the rendering in a process of its own, as the program's launch does, and looks at the
// files.

#include "support/Files.h"
#include "support/Shell.h"

#include <QColor>
#include <QImage>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace velmora::test {
namespace {

constexpr std::array names = {"1-result.png", "2-drop.png", "3-scanning.png"};

void render(const fs::path& into, const std::string& environment = "") {
    shell(environment + " " + shellWord(VELMORA_RENDER) + " " + shellWord(into.native()));
}

QImage load(const fs::path& path) {
    return QImage(QString::fromStdString(path));
}

/// How many pixels of `area`, given in points, are at least as light as `lightness`, from 0 to 255.
int lightPixels(const QImage& image, const QRect& area, int lightness) {
    int count = 0;
    for (int y = 2 * area.top(); y <= 2 * area.bottom(); ++y) {
        for (int x = 2 * area.left(); x <= 2 * area.right(); ++x) {
            count += image.pixelColor(x, y).lightness() >= lightness ? 1 : 0;
        }
    }
    return count;
}

TEST(Screenshots, WritesThreePicturesIntoANewDirectory) {
    const fs::path directory = freshFolder() / "deep" / "shots";
    render(directory);
    EXPECT_EQ(namesIn(directory), (std::vector<std::string>{names.begin(), names.end()}));
    for (const char* name : names) {
        EXPECT_EQ(load(directory / name).size(), QSize(2880, 1800)) << name;
    }
}

TEST(Screenshots, ReplacesFilesOfTheSameName) {
    const fs::path directory = freshFolder();
    write(directory / "2-drop.png", "old");
    render(directory);
    EXPECT_EQ(load(directory / "2-drop.png").size(), QSize(2880, 1800));
}

TEST(Screenshots, LeavesOutWhatCannotBeWritten) {
    const fs::path directory = freshFolder();
    fs::create_directory(directory / "2-drop.png");
    render(directory);
    EXPECT_TRUE(fs::is_directory(directory / "2-drop.png"));
    EXPECT_EQ(load(directory / "1-result.png").size(), QSize(2880, 1800));
    EXPECT_EQ(load(directory / "3-scanning.png").size(), QSize(2880, 1800));
}

TEST(Screenshots, SaysNothingWhenTheDirectoryCannotBeMade) {
    const fs::path file = write(freshFolder() / "file", "kept");
    render(file);
    EXPECT_EQ(read(file), "kept");
}

TEST(Screenshots, WritesTheSameBytesOnEveryDesktop) {
    const fs::path first = freshFolder();
    render(first);
    for (const std::string environment :
         {"", "LC_ALL=tr_TR.UTF-8 LANG=ar_EG",
          "QT_SCALE_FACTOR=1.5 QT_FONT_DPI=144 QT_SCREEN_SCALE_FACTORS=3",
          "QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=rhi QT_QPA_PLATFORMTHEME=gtk3 QT_STYLE_OVERRIDE=windows",
          "FONTCONFIG_FILE=/dev/null"}) {
        const fs::path other = freshFolder();
        render(other, environment);
        for (const char* name : names) {
            EXPECT_TRUE(read(first / name) == read(other / name)) << name << " under " << environment;
        }
    }
}

TEST(Screenshots, ShowsTheStateThatEachIsNamedFor) {
    const fs::path directory = freshFolder();
    render(directory);
    const QRect clock(520, 340, 400, 80); // where the result panel shows its total
    const QRect reset(140, 842, 70, 32);  // where only a scan offers a second button
    const QImage result = load(directory / "1-result.png");
    const QImage drop = load(directory / "2-drop.png");
    const QImage scanning = load(directory / "3-scanning.png");
    EXPECT_GT(lightPixels(result, clock, 150), 10'000);
    EXPECT_LT(lightPixels(drop, clock, 150), 5'000);
    EXPECT_EQ(lightPixels(drop, reset, 70), 0);
    EXPECT_GT(lightPixels(scanning, reset, 70), 100);
    EXPECT_LT(result.pixelColor(2878, 2).lightness(), 12) << "the far corner is dark";
}

} // namespace
} // namespace velmora::test
