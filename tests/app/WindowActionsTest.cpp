#include "app/WindowActions.h"

#include "app/panels/Panels.h"
#include "scan/ScanModel.h"
#include "tests/support/ComesTrue.h"
#include "ui/content/ScanView.h"
#include "ui/panel/FilePanel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

class WindowActionsTest : public testing::Test {
protected:
    void SetUp() override {
        actions.start({"/music/Live Set"});
        ASSERT_TRUE(comesTrue([this] { return view.done(); }));
        QGuiApplication::clipboard()->setText("before");
    }

    static QString clipboard() { return QGuiApplication::clipboard()->text(); }

    /// Two files of three seconds each, wherever it looks.
    ScanModel model{
        {.gather =
             [](const auto&, const auto&, const auto&) {
                 GatherResult result;
                 result.files = {"/music/Live Set/a.wav", "/music/Live Set/b.wav"};
                 return result;
             },
         .measure = [](const auto& path,
                       const auto&) { return Measured{.url = path, .seconds = 3, .bytes = 10}; }}};
    ScanView view{model};
    Alerts alerts;
    FilePanel panel;
    Panels panels{panel, alerts};
    WindowActions actions{model, view, alerts, panels};
};

TEST_F(WindowActionsTest, CopyTheTotalAndSaySo) {
    EXPECT_EQ(view.copyRuntimeTitle(), "COPY RUNTIME");
    actions.copyRuntime();
    EXPECT_EQ(clipboard(), "TOTAL RUNTIME  00:00:06   (6 sec)\n2 audio files — LIVE SET");
    EXPECT_EQ(view.copyRuntimeTitle(), "COPIED");
    EXPECT_EQ(view.copyFileListTitle(), "COPY FILE LIST");
    EXPECT_TRUE(comesTrue([this] { return view.copyRuntimeTitle() == "COPY RUNTIME"; }));
}

TEST_F(WindowActionsTest, CopyTheNamesAndSaySo) {
    actions.copyFileList();
    EXPECT_EQ(clipboard(), "a.wav\nb.wav");
    EXPECT_EQ(view.copyFileListTitle(), "COPIED");
    EXPECT_EQ(view.copyRuntimeTitle(), "COPY RUNTIME");
    EXPECT_TRUE(comesTrue([this] { return view.copyFileListTitle() == "COPY FILE LIST"; }));
}

TEST_F(WindowActionsTest, CopyNamesByTheirBytes) {
    actions.copyText("00:00:03\t/m/caf\xE9.wav");
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data("text/plain"), "00:00:03\t/m/caf\xE9.wav");
    EXPECT_EQ(clipboard(), "00:00:03\t/m/caf\uFFFD.wav");
}

TEST_F(WindowActionsTest, LeaveThePanelAsItIsWhereItIsOpenAlready) {
    actions.choose();
    panel.setTyped("/music");
    actions.choose();
    EXPECT_EQ(panel.typed(), "/music");
    panel.close();
    actions.zip();
    EXPECT_TRUE(comesTrue([this] { return panel.isOpen(); }));
    EXPECT_TRUE(panel.saving());
    actions.choose();
    EXPECT_FALSE(panel.saving()) << "it asks for something else now";
}

TEST_F(WindowActionsTest, ForgetTheResult) {
    actions.reset();
    EXPECT_TRUE(view.idle());
}

} // namespace
} // namespace velmora::test
