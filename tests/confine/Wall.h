#pragma once

// A tool that was taken over: a script in its place, behind the wall, beside a user's folder.

#include "confine/ConfinedChild.h"
#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// Whether the wall's own report says that `layer` stands here.
bool offers(std::string_view layer);

/// Whether the kernel itself says that it has Landlock of a version that is used.
bool hasLandlock();

class Wall : public testing::Test {
protected:
    fs::path home = freshFolder();
    fs::path secret = write(home / "private.txt", "secret");
    fs::path out = freshFolder();
    Rules rules{.writable = out};

    /// The exit status of `script`, run by the shell behind the wall.
    std::optional<int> status(const std::string& script) const;

    /// What `script` writes to its standard output and standard error.
    std::string output(const std::string& script) const;

    /// What each of some expressions in Python is worth behind the wall, or the name of its error. They know
    /// os, fcntl, resource, socket and call(NAME, ARGUMENT…), a function of the C library or, by its number,
    /// a system call, which takes numbers; strings in them stand in single quotes.
    std::vector<std::string> python(const std::vector<std::string>& expressions) const;

    std::string python(const std::string& expression) const;

    /// Whether a tool's processes end when the process that started the tool is killed while `script` runs.
    /// Waits a minute for it.
    bool endsWithItsParent(const std::string& script) const;

    static std::string word(const fs::path& path) { return shellWord(path.native()); }
};

} // namespace velmora::test
