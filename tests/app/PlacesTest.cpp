#include "app/panels/Places.h"

#include "app/panels/RecentFolders.h"
#include "tests/support/Files.h"

#include <QSettings>
#include <QStandardPaths>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> lines(const std::vector<Place>& places) {
    std::vector<std::string> result;
    for (const Place& place : places) {
        result.push_back(place.title.toStdString() + " " + place.folder.native());
    }
    return result;
}

TEST(Places, ReadsTheBookmarksOfGtk) {
    EXPECT_THAT(lines(gtkBookmarks("file:///home/ann/My%20Sets\n"
                                   "file:///srv/%FF Old tapes\n"
                                   "sftp://host/share Elsewhere\n\n")),
                ElementsAre("My Sets /home/ann/My Sets", "Old tapes /srv/\xff"));
}

TEST(Places, ReadsTheBookmarksOfKde) {
    EXPECT_THAT(lines(kdeBookmarks(R"(<?xml version="1.0"?><xbel>
        <bookmark href="file:///home/ann"><title>Home</title>
          <info><metadata><isSystemItem>true</isSystemItem></metadata></info></bookmark>
        <bookmark href="file:///srv/sets"><title>Sets &amp; more</title>
          <info><metadata><isSystemItem>false</isSystemItem></metadata></info></bookmark>
        <bookmark href="file:///srv/secret"><title>Secret</title>
          <info><metadata><IsHidden>true</IsHidden></metadata></info></bookmark>
        <bookmark href="trash:/"><title>Trash</title></bookmark>
        <bookmark href="file:///srv/plain"/></xbel>)")),
                ElementsAre("Sets & more /srv/sets", "plain /srv/plain"));
    EXPECT_THAT(kdeBookmarks("<xbel><bookmark href="), IsEmpty());
    EXPECT_THAT(kdeBookmarks(""), IsEmpty());
}

TEST(Places, FindsTheVolumesOfTheUser) {
    EXPECT_THAT(
        lines(volumes("22 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                      "23 22 8:2 / /media/ann/My\\040Disk rw - vfat /dev/sdb1 rw\n"
                      "24 22 8:3 / /run/media/ann/USB rw - vfat /dev/sdc1 rw\n"
                      "25 22 8:4 / /mnt rw - ext4 /dev/sdd1 rw\n"
                      "26 22 8:5 / /mnt/tapes rw - ext4 /dev/sdd2 rw\n"
                      "27 22 8:6 / /mntx rw - ext4 /dev/sdd3 rw\n"
                      "nonsense\n")),
        ElementsAre("My Disk /media/ann/My Disk", "USB /run/media/ann/USB", "mnt /mnt", "tapes /mnt/tapes"));
}

class RecentFoldersTest : public testing::Test {
protected:
    void SetUp() override {
        QStandardPaths::setTestModeEnabled(true);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QString::fromStdString(freshFolder().native()));
    }

    void TearDown() override { QStandardPaths::setTestModeEnabled(false); }
};

TEST_F(RecentFoldersTest, KeepsTheLastFiveWithTheirBytes) {
    EXPECT_THAT(recentFolders(), IsEmpty());
    for (const char* folder : {"/a", "/b", "/c\xff d", "/d", "/e", "/f", "/b"}) {
        rememberFolder(folder);
    }
    EXPECT_THAT(recentFolders(), ElementsAre("/b", "/f", "/e", "/d", "/c\xff d"));
}

TEST_F(RecentFoldersTest, ShowsThemOnceAndOnlyWhereTheyAre) {
    const fs::path folder = freshFolder();
    const std::vector<Place> places = presentPlaces({folder, "/", folder / "gone", folder});
    EXPECT_EQ(places.front().title, "Home");
    EXPECT_EQ(places.back().folder, folder);
    EXPECT_EQ(std::ranges::count(places, fs::path("/"), &Place::folder), 1);
    EXPECT_EQ(std::ranges::count(places, folder, &Place::folder), 1);
}

} // namespace
} // namespace velmora::test
