// Every test runs the rendering in a process of its own, as the program's launch does, and looks at the
// files.

#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <QColor>
#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>
#include <vector>

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

/// A desktop's settings for fonts that are nothing like ours.
fs::path roughFonts() {
    return write(freshFolder() / "fonts.conf",
                 R"(<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig>
<dir>/usr/share/fonts</dir>
<match target="font"><edit name="antialias"><bool>false</bool></edit>
<edit name="hintstyle"><const>hintfull</const></edit><edit name="rgba"><const>rgb</const></edit>
<edit name="embolden"><bool>true</bool></edit></match>
<match target="pattern"><edit name="family" mode="assign"><string>DejaVu Serif</string></edit></match>
</fontconfig>)");
}

TEST(Screenshots, WritesTheSameBytesOnEveryDesktop) {
    const fs::path first = freshFolder();
    render(first);
    for (const std::string& environment : std::vector<std::string>{
             "LC_ALL=C", "LC_ALL=tr_TR.UTF-8", "LC_ALL=ar_EG.UTF-8 LANGUAGE=ar",
             "QT_SCALE_FACTOR=1.5 QT_FONT_DPI=144 QT_SCREEN_SCALE_FACTORS=3",
             "QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=rhi QT_QPA_PLATFORMTHEME=gtk3 QT_STYLE_OVERRIDE=windows",
             "FONTCONFIG_FILE=/dev/null", "FONTCONFIG_FILE=" + shellWord(roughFonts().native())}) {
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

struct Region {
    const char* picture;
    const char* name;
    QRect place;                ///< points
    std::array<double, 3> mean; ///< red, green, blue, from 0 to 255
};

/// What was seen, and found good, in pictures that people looked at.
const std::vector<Region>& regions() {
    static const std::vector<Region> all = {
        {"1-result.png", "the near corner", {0, 0, 40, 40}, {22.9, 16.7, 33.4}},
        {"1-result.png", "the far corner", {1400, 860, 40, 40}, {7.7, 6.2, 20.2}},
        {"1-result.png", "the mark", {26, 26, 54, 54}, {92.3, 84.3, 103.7}},
        {"1-result.png", "the wordmark", {94, 36, 110, 22}, {57.4, 49.8, 71.5}},
        {"1-result.png", "the pill", {1350, 40, 66, 26}, {33.5, 18.4, 53.1}},
        {"1-result.png", "the card's upper edge", {400, 99, 200, 4}, {27.6, 16.2, 47.8}},
        {"1-result.png", "the light above the card", {400, 85, 200, 10}, {23.0, 13.4, 39.8}},
        {"1-result.png", "the card's ground", {100, 150, 200, 100}, {12.2, 7.1, 20.7}},
        {"1-result.png", "the ribbons at the left edge", {0, 460, 20, 20}, {35.1, 19.9, 56.1}},
        {"1-result.png", "the ribbons in the middle", {300, 380, 200, 140}, {12.0, 7.5, 22.8}},
        {"1-result.png", "the clock", {550, 380, 340, 80}, {71.6, 42.4, 123.5}},
        {"1-result.png", "the words", {630, 468, 180, 22}, {16.1, 12.3, 38.9}},
        {"1-result.png", "the count", {650, 500, 140, 18}, {32.9, 30.3, 43.3}},
        {"1-result.png", "the bars", {26, 790, 300, 38}, {18.8, 10.9, 33.0}},
        {"1-result.png", "the buttons", {26, 840, 460, 36}, {29.0, 18.7, 50.1}},
        {"2-drop.png", "the pill", {1330, 40, 90, 26}, {27.6, 24.6, 40.1}},
        {"2-drop.png", "the emblem", {670, 368, 100, 100}, {10.7, 7.0, 22.7}},
        {"2-drop.png", "the caption", {520, 484, 400, 22}, {52.3, 48.9, 66.4}},
        {"2-drop.png", "the ribbons in the middle", {300, 380, 200, 140}, {12.0, 7.5, 22.7}},
        {"2-drop.png", "the bars", {26, 790, 300, 38}, {15.7, 9.2, 28.2}},
        {"2-drop.png", "the button", {26, 840, 110, 36}, {20.0, 16.0, 50.2}},
        {"2-drop.png", "the room beside it", {200, 840, 300, 36}, {5.9, 3.8, 13.8}},
        {"3-scanning.png", "the pill", {1325, 40, 95, 26}, {21.8, 17.4, 54.8}},
        {"3-scanning.png", "the status", {660, 370, 120, 20}, {34.5, 19.2, 55.8}},
        {"3-scanning.png", "the count", {640, 405, 160, 50}, {53.0, 38.1, 116.1}},
        {"3-scanning.png", "the filled part", {512, 470, 260, 6}, {119.0, 76.6, 221.9}},
        {"3-scanning.png", "the rest of the bar", {800, 470, 120, 6}, {19.2, 17.5, 28.4}},
        {"3-scanning.png", "the source", {660, 488, 120, 16}, {18.2, 15.1, 30.3}},
        {"3-scanning.png", "the ribbons in the middle", {300, 340, 200, 200}, {11.6, 7.1, 21.9}},
        {"3-scanning.png", "the bars", {26, 790, 300, 38}, {21.5, 12.4, 37.1}},
    };
    return all;
}

std::array<double, 3> meanColor(const QImage& image, const QRect& area) {
    std::array<double, 3> sum{};
    for (int y = 2 * area.top(); y < 2 * (area.top() + area.height()); ++y) {
        for (int x = 2 * area.left(); x < 2 * (area.left() + area.width()); ++x) {
            const QRgb pixel = image.pixel(x, y);
            sum[0] += qRed(pixel);
            sum[1] += qGreen(pixel);
            sum[2] += qBlue(pixel);
        }
    }
    for (double& channel : sum) {
        channel /= 4.0 * area.width() * area.height();
    }
    return sum;
}

TEST(Screenshots, LookAsTheyDidWhenTheyWereLookedAt) {
    const fs::path directory = freshFolder();
    render(directory);
    std::map<std::string, QImage> images;
    for (const char* name : names) {
        images[name] = load(directory / name);
    }
    for (const Region& region : regions()) {
        EXPECT_THAT(meanColor(images[region.picture], region.place),
                    testing::Pointwise(testing::DoubleNear(0.6), region.mean))
            << region.name << " of " << region.picture;
    }
}

} // namespace
} // namespace velmora::test
