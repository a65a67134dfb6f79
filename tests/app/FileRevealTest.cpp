// Without any service on a session bus: what is left is xdg-open.

#include "app/desktop/FileReveal.h"

#include "app/WindowActions.h"
#include "app/panels/Panels.h"
#include "scan/ScanModel.h"
#include "tests/support/ComesTrue.h"
#include "tests/support/Files.h"
#include "ui/content/ScanView.h"
#include "ui/panel/FilePanel.h"

#include <QClipboard>
#include <QGuiApplication>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

class FileRevealTest : public testing::Test {
protected:
    void SetUp() override {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + QByteArray::fromStdString(folder / "no-bus"));
        qputenv("PATH", QByteArray::fromStdString(programs));
    }

    /// xdg-open becomes a shell script of this content.
    void install(const std::string& script) const {
        fs::permissions(write(programs / "xdg-open", "#!/bin/sh\n" + script), fs::perms::owner_all);
    }

    bool comesToFail() {
        bool failed = false;
        revealFile(write(folder / "a.zip"), [&] { failed = true; });
        return comesTrue([&] { return failed; });
    }

    fs::path folder = freshFolder();
    fs::path programs = folder / "bin";
};

TEST_F(FileRevealTest, FailsWhereThereIsNoProgramToOpenAFolder) {
    EXPECT_TRUE(comesToFail());
}

TEST_F(FileRevealTest, FailsWhereTheProgramKnowsNoFileManager) {
    install("exit 3\n");
    EXPECT_TRUE(comesToFail());
}

TEST_F(FileRevealTest, OpensTheFolder) {
    const fs::path record = folder / "record";
    install("echo \"$1\" > '" + record.native() + "'\n");
    bool failed = false;
    revealFile(write(folder / "a b" / "c.zip"), [&] { failed = true; });
    EXPECT_TRUE(comesTrue([&] { return fs::exists(record) && read(record).ends_with('\n'); }));
    EXPECT_EQ(read(record), "file://" + folder.native() + "/a%20b\n");
    EXPECT_FALSE(failed);
}

TEST_F(FileRevealTest, OfASavedZipThatFailsTellsThePathAndCopiesIt) {
    ScanModel model({.gather =
                         [this](const auto&, const auto&, const auto&) {
                             GatherResult result;
                             result.files = {write(folder / "a.wav", "audio")};
                             return result;
                         },
                     .measure = [](const auto& path,
                                   const auto&) { return Measured{.url = path, .seconds = 3, .bytes = 5}; }});
    ScanView view(model);
    Alerts alerts;
    FilePanel panel;
    Panels panels(panel, alerts);
    WindowActions actions(model, view, alerts, panels);
    actions.start({folder / "a.wav"});
    ASSERT_TRUE(comesTrue([&] { return view.done(); }));
    model.makeZip(folder / "out.zip");
    ASSERT_TRUE(comesTrue([&] { return std::holds_alternative<ZipDone>(model.zipState()); }));

    actions.revealZip();
    ASSERT_TRUE(comesTrue([&] { return alerts.open(); }));
    const QString path = QString::fromStdString(folder / "out.zip");
    EXPECT_TRUE(alerts.body().contains(path)) << alerts.body().toStdString();
    EXPECT_EQ(alerts.acceptTitle(), "Copy path");
    EXPECT_EQ(alerts.dismissTitle(), "OK");
    alerts.accept();
    EXPECT_FALSE(alerts.open());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), path);
}

} // namespace
} // namespace velmora::test
