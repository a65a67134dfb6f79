#pragma once

// What the tests of the real window share: a desktop, the program on it, and what reads
// and presses its controls.

#include "tests/window/Desktop.h"
#include "tests/window/ScreenReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace velmora::test {

/// The built program as a process of its own on a desktop of its own. It asks no server for updates, unless a
/// test names one.
class WindowTest : public testing::Test {
protected:
    explicit WindowTest(Bus bus = Bus::present, Display display = Display::x11);

    /// Anything that the program wrote to standard error is a failure.
    void TearDown() override;

    /// Starts the program without waiting for anything.
    std::unique_ptr<Process> start(const QStringList& arguments = {});

    /// Starts it and waits until its window has the focus and, where there is a bus to see that, is shown.
    void open(const QStringList& arguments = {});

    /// Starts it again beside the running one. Returns the exit status of the second.
    int startAgain(const QStringList& arguments = {});

    /// Writes a WAV file of so many seconds into the test's folder; its path.
    QString tone(const fs::path& name, int seconds) const;

    /// `path` as the program takes it on the command line, whatever bytes it holds.
    static QString url(const fs::path& path);

    /// From here on, what the program opens with another program (a page, a folder) is only recorded: its
    /// address is the only line of the returned file, which does not exist before.
    fs::path recordOpening() const;

    /// Waits until an element of that name is shown; otherwise a test failure that names what is shown.
    Element awaitShown(const QString& name) const;

    /// Waits until no element of that name is shown.
    void awaitGone(const QString& name) const;

    /// Waits until a window whose title begins with `title` has the focus.
    void awaitActive(const QString& title) const;

    /// Waits until the clipboard holds `text`.
    void awaitClipboard(const QString& text) const;

    /// Clicks in the middle of the element of that name, once it is shown.
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
