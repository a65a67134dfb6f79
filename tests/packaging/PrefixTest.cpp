// ./dev install and ./dev uninstall, but for the building.

#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr auto script = SOURCE_TREE "/packaging/prefix";
constexpr auto note = "share/velmora/installed";

std::string installInto(const fs::path& prefix) {
    return shell(shellWord(script) + " install " + shellWord(BUILD_TREE) + " " + shellWord(prefix.native()));
}

std::string uninstallFrom(const fs::path& prefix) {
    return shell(shellWord(script) + " uninstall " + shellWord(prefix.native()));
}

TEST(Prefix, IsAsBeforeAfterInstallingAndUninstalling) {
    const fs::path folder = freshFolder();
    const fs::path prefix = folder / "new/prefix";
    EXPECT_THAT(installInto(prefix), HasSubstr("Velmora is installed in " + prefix.native()));
    EXPECT_TRUE(fs::exists(prefix / "bin/velmora"));
    EXPECT_EQ(::access((prefix / "share/kio/servicemenus/com.orventa.Velmora.dolphin.desktop").c_str(), X_OK),
              0);
    EXPECT_THAT(read(prefix / "share/applications/mimeinfo.cache"), HasSubstr("com.orventa.Velmora.desktop"));
    EXPECT_TRUE(fs::exists(prefix / "share/mime/mime.cache"));
    uninstallFrom(prefix);
    EXPECT_THAT(namesIn(folder / "new"), IsEmpty());
}

TEST(Prefix, KeepsWhatOthersPutThere) {
    const fs::path prefix = freshFolder();
    const fs::path entry =
        write(prefix / "share/applications/other.desktop",
              "[Desktop Entry]\nType=Application\nName=Other\nExec=true\nMimeType=audio/flac;\n");
    const fs::path types =
        write(prefix / "share/mime/packages/other.xml",
              "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">"
              "<mime-type type=\"audio/x-other\"><glob pattern=\"*.other\"/></mime-type></mime-info>");
    write(prefix / "share/icons/hicolor/icon-theme.cache", "stale");
    fs::create_directories(prefix / "share/icons/hicolor/16x16/apps");
    fs::copy(BUILD_TREE "/packaging/icons/16/com.orventa.Velmora.png",
             prefix / "share/icons/hicolor/16x16/apps/other.png");
    fs::create_directories(prefix / "bin");
    installInto(prefix);
    EXPECT_THAT(read(prefix / "share/icons/hicolor/icon-theme.cache"), HasSubstr("com.orventa.Velmora"));
    uninstallFrom(prefix);
    EXPECT_THAT(namesIn(prefix), ElementsAre("bin", "share"));
    EXPECT_THAT(namesIn(prefix / "bin"), IsEmpty());
    EXPECT_THAT(read(prefix / "share/applications/mimeinfo.cache"),
                testing::AllOf(HasSubstr("audio/flac=other.desktop"), Not(HasSubstr("Velmora"))));
    EXPECT_THAT(read(prefix / "share/mime/globs"), HasSubstr("audio/x-other:*.other"));
    EXPECT_THAT(read(prefix / "share/icons/hicolor/icon-theme.cache"), Not(HasSubstr("Velmora")));
    EXPECT_TRUE(fs::exists(entry) && fs::exists(types));
}

TEST(Prefix, ANewVersionTakesTheOldOnesFilesAway) {
    const fs::path prefix = freshFolder();
    installInto(prefix);
    write(prefix / "lib/velmora/of-the-old-version", "");
    write(prefix / note, read(prefix / note) + "lib/\nlib/velmora/\nlib/velmora/of-the-old-version\n");
    installInto(prefix);
    EXPECT_FALSE(fs::exists(prefix / "lib"));
    EXPECT_TRUE(fs::exists(prefix / "bin/velmora"));
    uninstallFrom(prefix);
    EXPECT_THAT(namesIn(prefix), IsEmpty());
}

TEST(Prefix, TellsWhereItIsNotLookedFor) {
    const fs::path prefix = freshFolder();
    EXPECT_THAT(installInto(prefix), testing::AllOf(HasSubstr((prefix / "bin").native() + " is not in PATH"),
                                                    HasSubstr("is not in XDG_DATA_DIRS")));
    const std::string command = "PATH=$PATH:" + shellWord((prefix / "bin").native()) +
                                " XDG_DATA_DIRS=" + shellWord((prefix / "share/").native()) + " " + script +
                                " install " + shellWord(BUILD_TREE) + " " + shellWord(prefix.native());
    EXPECT_THAT(shell(command), Not(HasSubstr("is not in")));
}

TEST(Prefix, SaysWhyItCannotBeUsed) {
    const fs::path folder = freshFolder();
    const std::string check = shellWord(script) + " check ";
    ShellResult result = tryShell(check + shellWord(write(folder / "file").native() + "/prefix") + " 2>&1");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("is no folder"));

    result = tryShell(shellWord(script) + " uninstall " + shellWord(folder.native()) + " 2>&1");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("did not put Velmora into " + folder.native()));
}

/// As an ordinary user, who reads the script from standard input: it may lie where only root gets to.
TEST(Prefix, IsRefusedWhereTheUserMayNotWrite) {
    const std::string user = ::geteuid() == 0 ? "setpriv --reuid 65534 --regid 65534 --clear-groups " : "";
    const ShellResult result =
        tryShell("cd / && TMPDIR=/tmp " + user + "bash -s check /usr/velmora 2>&1 <" + shellWord(script));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("you may not write into /usr;"));
}

} // namespace
} // namespace velmora::test
