// The file panel over the window, worked with the keyboard and the pointer.

#include "tests/staged/StagedWindow.h"
#include "tests/ui/UiTest.h"
#include "ui/panel/FilePanel.h"

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <semaphore>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PanelViewTest : public UiTest {
protected:
    FilePanel& panel() { return panelOf(*window); }

    FileList& files() { return *panel().files(); }

    std::vector<std::string> selected() { return files().selected(); }

    std::string focused() {
        return window->activeFocusItem() == nullptr ? ""
                                                    : window->activeFocusItem()->objectName().toStdString();
    }

    void ask(std::optional<std::string> name = {}) {
        panel().ask({.message = "Choose",
                     .prompt = "Measure",
                     .folders = {"/music/sets"},
                     .name = std::move(name),
                     .places =
                         [] {
                             return std::vector<Place>{{"Home", "PLACES", "/home/ann"}};
                         },
                     .chosen = [this](const Paths& paths) { chosen = paths; }});
        awaitRead();
    }

    void awaitRead() {
        EXPECT_TRUE(comesTrue([this] { return !panel().reading() && !panel().places().isEmpty(); }));
    }

    void awaitFolder(const QString& folder) {
        EXPECT_TRUE(comesTrue([&] { return panel().folderText() == folder && !panel().reading(); }));
    }

    /// Clicks on it once it is there.
    void clickOn(const char* property, const QString& value) {
        ASSERT_TRUE(comesTrue([&] { return labelled(property, value) != nullptr; })) << value.toStdString();
        grab(); // what stands in a row is placed when a frame is made
        click(labelled(property, value));
    }

    QPoint middleOf(int row) {
        const QQuickItem* list = find("fileList");
        return place(list).topLeft() + QPoint(60, 13 + 26 * row);
    }

    void clickRow(int row, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(window.get(), Qt::LeftButton, modifiers, middleOf(row));
    }

    Paths chosen;
};

TEST_F(PanelViewTest, TakesTheFocusAndGivesItBack) {
    openWindow();
    press(Qt::Key_Tab);
    ASSERT_EQ(focused(), "chooseButton");
    ask();
    EXPECT_EQ(focused(), "fileList");
    EXPECT_FALSE(find("chooseButton")->isEnabled());
    press(Qt::Key_O, Qt::ControlModifier);
    press(Qt::Key_F10);
    EXPECT_EQ(actions.asked, QStringList());
    EXPECT_FALSE(find("menu")->isVisible());
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel().isOpen());
    EXPECT_EQ(window->findChild<QQuickItem*>("fileList"), nullptr);
    EXPECT_EQ(focused(), "chooseButton");
    EXPECT_TRUE(find("chooseButton")->isEnabled());
}

TEST_F(PanelViewTest, SelectsWithTheKeyboardAlone) {
    openWindow();
    ask();
    EXPECT_FALSE(find("panelAccept")->isEnabled());
    press(Qt::Key_Return);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_THAT(chosen, IsEmpty());
    press(Qt::Key_Down);
    EXPECT_THAT(selected(), ElementsAre("Field recordings"));
    EXPECT_TRUE(find("panelAccept")->isEnabled());
    press(Qt::Key_Down);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre("Harbour", "Live Set 2026"));
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_Space);
    EXPECT_THAT(selected(), ElementsAre("Harbour", "Live Set 2026", "set.zip"));
    press(Qt::Key_Space);
    press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(files().selectedCount(), files().count());
    press(Qt::Key_PageDown);
    EXPECT_THAT(selected(), ElementsAre("set.zip"));
    press(Qt::Key_PageUp);
    EXPECT_EQ(files().current(), 0);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(chosen.size(), static_cast<std::size_t>(files().count()));
}

TEST_F(PanelViewTest, LooksForNamesByTheirFirstLetters) {
    openWindow();
    ask();
    press(Qt::Key_L);
    EXPECT_THAT(selected(), ElementsAre("Live Set 2026"));
    press(Qt::Key_I);
    press(Qt::Key_V);
    press(Qt::Key_E);
    press(Qt::Key_Space);
    EXPECT_THAT(selected(), ElementsAre("Live Set 2026")) << "a blank of the name does not deselect it";
    EXPECT_TRUE(comesTrue([this] { return !labelled("letters", "live "); }))
        << "after a rest one begins anew";
    press(Qt::Key_0);
    EXPECT_THAT(selected(), ElementsAre("01 Opening.flac"));
    press(Qt::Key_0);
    EXPECT_THAT(selected(), ElementsAre("02 Night train.flac")) << "the same letter again: the next";
}

TEST_F(PanelViewTest, GoesThroughFolders) {
    openWindow();
    ask();
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    awaitFolder("/music/sets/Field recordings");
    press(Qt::Key_Backspace);
    awaitFolder("/music/sets");
    press(Qt::Key_Up, Qt::AltModifier);
    awaitFolder("/music");
    press(Qt::Key_Left, Qt::AltModifier);
    awaitFolder("/music/sets");
    EXPECT_EQ(focused(), "fileList");
    clickOn("title", "music");
    awaitFolder("/music");
    press(Qt::Key_H, Qt::ControlModifier);
    EXPECT_TRUE(files().hiddenToo());
    press(Qt::Key_H, Qt::ControlModifier);
    EXPECT_FALSE(files().hiddenToo());
}

TEST_F(PanelViewTest, TakesATypedPathWithItsCompletion) {
    openWindow();
    ask();
    press(Qt::Key_Slash);
    EXPECT_TRUE(panel().typing());
    press(Qt::Key_H);
    EXPECT_EQ(panel().typed(), "/h");
    EXPECT_TRUE(comesTrue([this] { return panel().proposals() == QStringList("/Harbour/"); }));
    press(Qt::Key_Tab);
    EXPECT_EQ(panel().typed(), "/Harbour/");
    EXPECT_TRUE(comesTrue([this] { return panel().proposals().size() > 1; }));
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(panel().typed(), "/Harbour/Harbour/");
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel().typing());
    EXPECT_TRUE(panel().isOpen());
    EXPECT_EQ(focused(), "fileList");
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(panel().typed(), "/music/sets");
    for (const char letter : std::string("/none")) {
        QTest::keyClick(window.get(), letter);
    }
    EXPECT_TRUE(find("panelAccept")->isEnabled());
    press(Qt::Key_Return);
    EXPECT_TRUE(comesTrue([this] { return labelled("text", "“none”: not there"); }));
    EXPECT_THAT(chosen, IsEmpty());
    click(find("panelAccept"));
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel().isOpen());
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(PanelViewTest, FollowsThePointer) {
    openWindow();
    ask();
    clickRow(3);
    EXPECT_THAT(selected(), ElementsAre("01 Opening.flac"));
    clickRow(4, Qt::ShiftModifier);
    clickRow(0, Qt::ControlModifier);
    EXPECT_THAT(selected(), ElementsAre("Field recordings", "01 Opening.flac", "02 Night train.flac"));
    clickOn("label", "Sort by size");
    EXPECT_EQ(files().column(), FileList::Size);
    clickOn("label", "All files");
    EXPECT_TRUE(files().all());
    QTest::mouseDClick(window.get(), Qt::LeftButton, {}, middleOf(1));
    awaitFolder("/music/sets/Harbour");
    clickRow(3);
    click(find("panelAccept"));
    EXPECT_EQ(chosen.size(), 1);
    click(find("panelCancel"));
    EXPECT_FALSE(panel().isOpen());
}

TEST_F(PanelViewTest, ReachesEveryControlInTurn) {
    openWindow();
    ask("Mix.zip");
    std::vector<std::string> names;
    for (int i = 0; i < 19; ++i) {
        press(Qt::Key_Tab);
        const QQuickItem* item = window->activeFocusItem();
        const QString label = item->property("label").toString();
        names.push_back((label.isEmpty() ? item->objectName() : label).toStdString());
    }
    EXPECT_THAT(names, ElementsAre("New folder", "All files", "Hidden files", "Cancel", "Measure", "Menu",
                                   "Minimise", "Maximise", "Close", "Up", "/", "music", "sets", "place",
                                   "Sort by name", "Sort by size", "Sort by changed", "fileList", ""));
}

TEST_F(PanelViewTest, EditsTheNameWithoutItsEnding) {
    openWindow();
    ask("Mix.zip");
    press(Qt::Key_A);
    EXPECT_EQ(panel().name(), "a.zip");
    clickRow(7);
    EXPECT_EQ(panel().name(), "set.zip");
    clickOn("label", "New folder");
    press(Qt::Key_Escape);
    EXPECT_TRUE(panel().isOpen());
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel().isOpen());
}

TEST_F(PanelViewTest, StandsBelowAnAlert) {
    openWindow();
    ask("Mix.zip");
    const std::string before = focused();
    alerts.show({"Replace?", "", "Replace", "Cancel"});
    EXPECT_EQ(focused(), "alertAccept");
    press(Qt::Key_Escape);
    EXPECT_TRUE(panel().isOpen());
    EXPECT_EQ(focused(), before);
}

TEST_F(PanelViewTest, SaysThatItReadsOnlyWhereThatTakesTime) {
    std::binary_semaphore silence(0);
    FilePanel slow([&](const std::filesystem::path& path) {
        silence.acquire();
        return FolderContents{.folder = path};
    });
    slow.ask({"Choose", "Measure", {"/a"}});
    show("FilePanelBox", {{"panel", QVariant::fromValue(&slow)}}, {880, 660});
    EXPECT_TRUE(comesTrue([this] { return labelled("text", "Reading…"); }));
    silence.release();
    EXPECT_TRUE(comesTrue([this] { return !labelled("text", "Reading…"); }));
    EXPECT_TRUE(labelled("text", "No folders, archives or audio files here"));
    window.reset();
}

TEST_F(PanelViewTest, MakesRowsOnlyForWhatIsSeen) {
    FilePanel large([](const std::filesystem::path& path) {
        return FolderContents{
            .folder = path,
            .files = std::vector<ListedFile>(50'000, ListedFile{"a.wav", ListedKind::audio, 1, 1})};
    });
    large.ask({"Choose", "Measure", {"/a"}});
    EXPECT_TRUE(comesTrue([&] { return large.files()->count() == 50'000; }));
    show("FilePanelBox", {{"panel", QVariant::fromValue(&large)}}, {880, 660});
    find("fileList")->forceActiveFocus();
    press(Qt::Key_End);
    EXPECT_TRUE(comesTrue([&] { return large.files()->current() == 49'999; }));
    press(Qt::Key_Home);
    grab();
    EXPECT_EQ(large.files()->current(), 0);
    EXPECT_LT(std::ranges::count_if(shown(),
                                    [](const QQuickItem* item) { return item->property("faint").isValid(); }),
              100);
    window.reset();
}

} // namespace
} // namespace velmora::test
