#pragma once

// What the tests of the real window share: a desktop, the program on it, eyes and hands.

#include "tests/window/Desktop.h"
#include "tests/window/ScreenReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace velmora::test {

/// The built program as a process of its own on a desktop of its own. It asks nobody for updates, unless a
/// test says whom.
class WindowTest : public testing::Test {
protected:
    explicit WindowTest(Bus bus = Bus::present, Display display = Display::x11);

    /// Whatever the program complained of is a failure.
    void TearDown() override;

    /// Starts the program without waiting for anything.
    std::unique_ptr<Process> start(const QStringList& arguments = {});

    /// Starts it and waits until its window has the focus and, as far as that can be seen, is shown.
    void open(const QStringList& arguments = {});

    /// Starts it again beside the running one; its exit status.
    int startAgain(const QStringList& arguments = {});

    /// Writes a WAV file of so many seconds into the test's folder; its path.
    QString tone(const fs::path& name, int seconds) const;

    /// `path` as the program takes it on the command line, whatever bytes it holds.
    static QString url(const fs::path& path);

    /// From here on, what the program opens with another (a page, a folder) is only noted: its address, in a
    /// line of the file returned, which is not there before.
    fs::path recordOpening() const;

    /// Waits until that is shown; a test failure that tells what is shown instead.
    Element awaitShown(const QString& name) const;

    /// Waits until that is no longer shown.
    void awaitGone(const QString& name) const;

    /// Waits until the window whose title begins so has the focus.
    void awaitActive(const QString& title) const;

    /// Waits until what is on the clipboard is `text`.
    void awaitClipboard(const QString& text) const;

    /// Clicks in the middle of what is named so, once it is shown.
    void click(const QString& name) const;

    /// The window's place on the screen; empty while there is no window.
    QRect window() const;

    /// The private directories of the runs there are and were.
    std::vector<std::string> privateDirectories() const {
        return namesIn(desktop.temporary(), "scan-velmora-");
    }

    /// What they hold.
    std::vector<std::string> leftovers() const {
        std::vector<std::string> items;
        for (const std::string& directory : privateDirectories()) {
            std::ranges::move(namesIn(desktop.temporary() / directory), std::back_inserter(items));
        }
        return items;
    }

    Desktop desktop;
    ScreenReader reader{desktop.bus()};
    QProcessEnvironment environment = desktop.environment(); ///< the program's
    fs::path folder = freshFolder();
    std::unique_ptr<Process> velmora;
};

} // namespace velmora::test
