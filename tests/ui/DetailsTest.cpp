// The details over the card, used with keyboard and mouse.

#include "tests/staged/SampleDetails.h"
#include "tests/staged/StagedWindow.h"
#include "tests/ui/UiTest.h"

#include <QAccessible>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DetailsTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScanState state = done;
        state.source = "MUSIC";
        state.unreadable = 4;
        scan.show(state);
        show(sampleDetails());
    }

    void show(SampleDetails sample) { details.show(std::move(sample.details), sample.summary); }

    /// Waits until `count` rows are shown.
    void awaitRows(int count) {
        EXPECT_TRUE(comesTrue([&] { return details.rows()->count() == count; })) << details.rows()->count();
        EXPECT_TRUE(comesTrue([&] { return count == 0 || !lines().isEmpty(); }));
    }

    void openDetails() {
        openWindow();
        press(Qt::Key_D, Qt::ControlModifier);
        awaitRows(31);
    }

    /// The rows that are to be seen, from the top.
    QList<QQuickItem*> lines() {
        QList<QQuickItem*> lines = itemsNamed("detailsLine");
        std::ranges::sort(lines, {}, &QQuickItem::y);
        return lines;
    }

    /// What a list or a row of tabs has made: only the items around it know it.
    QQuickItem* made(const char* name) { return itemsNamed(name).at(0); }

    void type(const std::string& letters) {
        for (const char letter : letters) {
            QTest::keyClick(window.get(), letter);
        }
    }

    std::string focused() { return window->activeFocusItem()->objectName().toStdString(); }

    bool isShown() const { return window->findChild<QQuickItem*>("detailsList") != nullptr; }
};

TEST_F(DetailsTest, OpenByTheirKeyAndCloseByEscape) {
    openDetails();
    EXPECT_TRUE(isShown());
    EXPECT_EQ(details.list(), Details::Files);
    EXPECT_FALSE(find("resultPanel")->isVisible());
    press(Qt::Key_Escape);
    EXPECT_TRUE(comesTrue([this] { return !isShown(); }));
    EXPECT_EQ(details.rows()->total(), 0) << "nothing is kept";
    EXPECT_TRUE(find("resultPanel")->isVisible());
    EXPECT_THAT(actions.asked, IsEmpty()) << "the result stays";
    press(Qt::Key_Escape);
    EXPECT_EQ(actions.asked, QStringList("reset"));
}

TEST_F(DetailsTest, OpenFromTheMenuAndTheLines) {
    openWindow();
    press(Qt::Key_F10);
    click(find("detailsRow"));
    EXPECT_EQ(details.list(), Details::Files);
    EXPECT_TRUE(details.isOpen());
    click(find("detailsClose"));
    EXPECT_FALSE(details.isOpen());
    click(find("unreadableLine"));
    EXPECT_EQ(details.list(), Details::Unreadable);
    awaitRows(5);
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_FALSE(details.isOpen());
    click(find("countLine"));
    EXPECT_EQ(details.list(), Details::Files);
    awaitRows(31);
    click(made("tabFOLDERS"));
    awaitRows(5);
    EXPECT_EQ(details.list(), Details::Folders);
}

TEST_F(DetailsTest, AreNotThereWhereNothingWasFound) {
    details.show(nullptr, {});
    scan.show({});
    openWindow();
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_FALSE(details.isOpen());
    press(Qt::Key_F10);
    EXPECT_EQ(focused(), "aboutRow");
    EXPECT_FALSE(find("detailsRow")->isVisible());
}

TEST_F(DetailsTest, UnderlineWhatOpensThemUnderThePointer) {
    openWindow();
    for (const char* link : {"countLink", "unreadableLink"}) {
        QQuickItem* const underline = find(link)->findChild<QQuickItem*>("underline");
        EXPECT_FALSE(underline->isVisible());
        hover(find(link));
        EXPECT_TRUE(underline->isVisible());
        hoverNothing();
        EXPECT_FALSE(underline->isVisible());
    }
}

TEST_F(DetailsTest, NameABrokenArchiveUnderTheEmptyResult) {
    show(sampleOf({.skippedArchives = {{"/m/set.zip", Reason::damaged}}}, {"/m/set.zip"}));
    scan.show({.phase = ScanModel::Phase::empty,
               .status = "NO AUDIO FOUND",
               .missing = "set.zip: archive is damaged"});
    openWindow();
    hover(find("emptyStatus"));
    ASSERT_TRUE(comesTrue([this] { return !visibleToolTips(*window).isEmpty(); }));
    EXPECT_EQ(visibleToolTips(*window).constFirst()->property("text"), "set.zip: archive is damaged");
    hoverNothing();
    EXPECT_TRUE(comesTrue([this] { return visibleToolTips(*window).isEmpty(); }));
    click(find("emptyStatus"));
    awaitRows(1);
    EXPECT_EQ(details.list(), Details::Unreadable);
    details.close();
    scan.show({.phase = ScanModel::Phase::empty, .status = "NO AUDIO FOUND"});
    click(find("emptyStatus"));
    EXPECT_FALSE(details.isOpen()) << "all could be read";
}

TEST_F(DetailsTest, CopyTheirRowsAndNotTheTotal) {
    openDetails();
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(actions.copied, "00:04:06\t/home/ann/Field Recordings/Harbour/02 Cranes and gulls.flac\n"
                              "00:04:23\t/home/ann/Field Recordings/Harbour/03 Cranes and gulls.flac");
    EXPECT_THAT(actions.asked, IsEmpty());
    press(Qt::Key_Escape);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(actions.asked, QStringList("copyRuntime"));
}

TEST_F(DetailsTest, GoThroughTheRowsByKey) {
    openDetails();
    const RowsModel& rows = *details.rows();
    press(Qt::Key_End);
    EXPECT_EQ(rows.current(), 30);
    press(Qt::Key_Down);
    EXPECT_EQ(rows.current(), 30);
    press(Qt::Key_PageUp);
    EXPECT_LT(rows.current(), 30);
    press(Qt::Key_Home);
    EXPECT_EQ(rows.current(), 0);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(rows.selectedCount(), 31);
}

TEST_F(DetailsTest, SearchForWhatIsTyped) {
    openDetails();
    type("LIVE");
    awaitRows(2);
    EXPECT_TRUE(find("detailsSearch")->hasActiveFocus());
    press(Qt::Key_Return);
    EXPECT_EQ(focused(), "detailsList");
    click(made("tabUNREADABLE"));
    awaitRows(5); // the search ends with its list
}

TEST_F(DetailsTest, ShowAFileInItsFolder) {
    openDetails();
    press(Qt::Key_Return);
    EXPECT_THAT(std::exchange(actions.revealed, {}),
                ElementsAre("/home/ann/Field Recordings/Harbour/01 Cranes and gulls.flac"));
    type("caf");
    awaitRows(1);
    QTest::mouseDClick(window.get(), Qt::LeftButton, {}, place(lines().front()).center());
    EXPECT_THAT(actions.revealed, ElementsAre("/home/ann/Field Recordings/Market/caf\xE9.wav"));
}

TEST_F(DetailsTest, SortByTheTitleThatIsPressed) {
    openDetails();
    click(made("column2"));
    const auto first = [this] {
        return details.rows()->data(details.rows()->index(0), RowsModel::cellsRole).toStringList().value(2);
    };
    EXPECT_TRUE(comesTrue([&] { return first() == "01:37:12"; }));
    click(made("column2"));
    EXPECT_TRUE(comesTrue([&] { return first() == "\u2013"; }));
}

TEST_F(DetailsTest, SelectWithTheMouse) {
    openDetails();
    const auto clickLine = [this](qsizetype line, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(window.get(), Qt::LeftButton, modifiers, place(lines()[line]).center());
    };
    clickLine(1);
    clickLine(3, Qt::ShiftModifier);
    EXPECT_EQ(details.rows()->selectedCount(), 3);
    clickLine(2, Qt::ControlModifier);
    EXPECT_EQ(details.rows()->selectedCount(), 2);
    clickLine(4);
    EXPECT_EQ(details.rows()->selectedCount(), 1);
    EXPECT_TRUE(lines()[4]->property("selected").toBool());
    EXPECT_FALSE(lines()[3]->property("selected").toBool());
}

TEST_F(DetailsTest, CloseWhenANewScanBegins) {
    openDetails();
    details.show(nullptr, {});
    scan.show({.phase = ScanModel::Phase::scanning});
    EXPECT_TRUE(comesTrue([this] { return !isShown(); }));
    EXPECT_TRUE(find("scanningPanel")->isVisible());
}

TEST_F(DetailsTest, GiveTheFocusBack) {
    openWindow();
    press(Qt::Key_Tab);
    ASSERT_EQ(focused(), "countLink");
    press(Qt::Key_Return);
    EXPECT_EQ(focused(), "detailsList");
    press(Qt::Key_Escape);
    EXPECT_EQ(focused(), "countLink");
}

TEST_F(DetailsTest, TellOfWhatInTheTitleAndAtTheTotal) {
    openWindow();
    EXPECT_EQ(window->title(), "MUSIC \u2013 01:02:05");
    hover(find("totalClock"));
    ASSERT_TRUE(comesTrue([this] { return !visibleToolTips(*window).isEmpty(); }));
    EXPECT_EQ(visibleToolTips(*window).constFirst()->property("text"), "MUSIC \u2013 01:02:05");
    hoverNothing();
    EXPECT_TRUE(comesTrue([this] { return visibleToolTips(*window).isEmpty(); }));
    scan.show({});
    EXPECT_EQ(window->title(), "Velmora");
}

} // namespace
} // namespace velmora::test
