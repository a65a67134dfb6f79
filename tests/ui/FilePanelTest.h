#pragma once

// What the tests of the file panel without its view share: a folder, and a panel that shows it.

#include "tests/support/ComesTrue.h"
#include "tests/support/Files.h"
#include "ui/panel/FilePanel.h"
#include "ui/panel/TypedPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

class FilePanelTest : public testing::Test {
protected:
    void SetUp() override {
        write(folder / "a.ogg", "0");
        write(folder / "b.ogg", "0");
        write(folder / "\xff.ogg", "0");
        write(folder / "album/c.ogg", "0");
    }

    PanelRequest request() {
        return {.message = "m", .prompt = "p", .folders = {folder}, .chosen = [this](const Paths& paths) {
                    chosen = paths;
                }};
    }

    void open() {
        panel.ask(request());
        awaitRead();
    }

    void save(const std::string& name) {
        PanelRequest saving = request();
        saving.name = name;
        saving.ending = ".zip";
        panel.ask(saving);
        awaitRead();
    }

    void awaitRead() {
        EXPECT_TRUE(comesTrue([this] { return !panel.reading(); }));
    }

    int row(const std::string& name) const {
        for (int i = 0; i < files.count(); ++i) {
            if (files.file(i).name == name) {
                return i;
            }
        }
        return -1;
    }

    void type(const QString& text) {
        panel.setTyping(true);
        panel.setTyped(text);
    }

    void expectChosen(const Paths& paths) {
        EXPECT_TRUE(comesTrue([this] { return !chosen.empty(); }));
        EXPECT_EQ(chosen, paths);
    }

    void expectComplaint(const QString& complaint) {
        EXPECT_TRUE(comesTrue([this] { return !panel.complaint().isEmpty(); }));
        EXPECT_EQ(panel.complaint().toStdString(), complaint.toStdString());
        EXPECT_THAT(chosen, testing::IsEmpty());
    }

    void expectFolder(const fs::path& expected) {
        EXPECT_TRUE(comesTrue([&] { return !panel.reading() && panel.folderText() == shownPath(expected); }))
            << panel.folderText().toStdString();
    }

    fs::path folder = freshFolder();
    Paths chosen;
    FilePanel panel;
    FileList& files = *panel.files();
};

} // namespace velmora::test
