// Installs this build tree as packagers and users do, and runs what is there then.

#include "tests/support/Archives.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAreArray;

const std::vector<std::string> terminalFiles = {
    "bin/velmora-scan",
    "libexec/velmora/velmora-confine",
    "libexec/velmora/velmora-libav",
    "share/bash-completion/completions/velmora-scan",
    "share/fish/vendor_completions.d/velmora-scan.fish",
    "share/man/man1/velmora-scan.1",
    "share/zsh/site-functions/_velmora-scan",
};

const std::vector<std::string> windowFiles = {
    "bin/velmora",
    "share/applications/com.orventa.Velmora.desktop",
    "share/bash-completion/completions/velmora",
    "share/dbus-1/services/com.orventa.Velmora.service",
    "share/fish/vendor_completions.d/velmora.fish",
    "share/icons/hicolor/128x128/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/16x16/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/22x22/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/24x24/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/256x256/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/32x32/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/48x48/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/512x512/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/64x64/apps/com.orventa.Velmora.png",
    "share/icons/hicolor/scalable/apps/com.orventa.Velmora.svg",
    "share/icons/hicolor/symbolic/apps/com.orventa.Velmora-symbolic.svg",
    "share/kio/servicemenus/com.orventa.Velmora.dolphin.desktop",
    "share/man/man1/velmora.1",
    "share/metainfo/com.orventa.Velmora.metainfo.xml",
    "share/mime/packages/com.orventa.Velmora.mime.xml",
    "share/nemo/actions/com.orventa.Velmora.nemo_action",
    "share/zsh/site-functions/_velmora",
};

std::string installation(const fs::path& prefix, const std::string& options = "") {
    return std::string(CMAKE) + " --install " + shellWord(BUILD_TREE) + " --prefix " +
           shellWord(prefix.native()) + " " + options + " 2>&1";
}

/// All files below a folder, as ways from there.
std::vector<std::string> filesBelow(const fs::path& folder) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_directory()) {
            files.push_back(entry.path().lexically_relative(folder));
        }
    }
    return files;
}

TEST(Install, ComponentsShareAllFilesBetweenThem) {
    const fs::path prefix = freshFolder();
    shell(installation(prefix, "--component terminal"));
    EXPECT_THAT(filesBelow(prefix), UnorderedElementsAreArray(terminalFiles));

    const fs::path other = freshFolder();
    shell(installation(other, "--component window"));
    EXPECT_THAT(filesBelow(other), UnorderedElementsAreArray(windowFiles));

    const fs::path both = freshFolder();
    shell(installation(both));
    std::vector<std::string> all = terminalFiles;
    all.insert(all.end(), windowFiles.begin(), windowFiles.end());
    EXPECT_THAT(filesBelow(both), UnorderedElementsAreArray(all));
}

TEST(Install, TerminalNeedsNoLibraryOfAWindow) {
    const char* const window =
        "Qt6(Gui|Quick|Qml|Widgets|DBus|Network)|libX|libxcb|wayland|libE?GL|fontconfig";
    EXPECT_THAT(shell("ldd " + shellWord(VELMORA_SCAN)), Not(ContainsRegex(window)));
    // Of what libavformat loads in turn some does.
    EXPECT_THAT(shell("readelf -d " + shellWord(VELMORA_LIBAV)), Not(ContainsRegex(window)));
    EXPECT_THAT(shell("ldd " + shellWord(VELMORA)), ContainsRegex(window));
}

TEST(Install, IsMadeBelowDestdirForAnotherPlace) {
    const fs::path stage = freshFolder();
    shell("DESTDIR=" + shellWord(stage.native()) + " " + installation("/opt/velmora", "--component window"));
    const fs::path prefix = stage / "opt/velmora";
    EXPECT_THAT(filesBelow(stage), testing::SizeIs(windowFiles.size()));
    EXPECT_THAT(read(prefix / "share/dbus-1/services/com.orventa.Velmora.service"),
                HasSubstr("\nExec=/opt/velmora/bin/velmora --service\n"));
    EXPECT_THAT(read(prefix / "share/applications/com.orventa.Velmora.desktop"),
                testing::AllOf(HasSubstr("\nTryExec=/opt/velmora/bin/velmora\n"),
                               HasSubstr("\nExec=/opt/velmora/bin/velmora %F\n"),
                               HasSubstr("\nExec=/opt/velmora/bin/velmora --choose\n")));
    EXPECT_THAT(read(prefix / "share/kio/servicemenus/com.orventa.Velmora.dolphin.desktop"),
                HasSubstr("\nExec=/opt/velmora/bin/velmora %F\n"));
    EXPECT_THAT(read(prefix / "share/nemo/actions/com.orventa.Velmora.nemo_action"),
                testing::AllOf(HasSubstr("\nExec=/opt/velmora/bin/velmora %U\n"),
                               HasSubstr("\nDependencies=/opt/velmora/bin/velmora;\n")));
}

TEST(Install, QuotesAPrefixOrRefusesIt) {
    const fs::path prefix = freshFolder() / "my programs";
    shell(installation(prefix, "--component window"));
    const std::string program = (prefix / "bin/velmora").native();
    EXPECT_THAT(read(prefix / "share/applications/com.orventa.Velmora.desktop"),
                testing::AllOf(HasSubstr("\nTryExec=" + program + "\n"),
                               HasSubstr("\nExec=\"" + program + "\" %F\n")));

    const ShellResult refused = tryShell(installation(freshFolder() / "100%", "--component window"));
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.output, HasSubstr("cannot be named in a desktop file"));
}

TEST(Install, TakesAPrefixBelowTheCurrentFolder) {
    const fs::path folder = freshFolder();
    shell(installation("below", "--component window"), folder);
    EXPECT_THAT(read(folder / "below/share/dbus-1/services/com.orventa.Velmora.service"),
                HasSubstr("\nExec=" + (folder / "below/bin/velmora").native() + " --service\n"));
}

TEST(Install, RunsFromWhereItWasMovedTo) {
    const fs::path folder = freshFolder();
    shell(installation(folder / "first"));
    fs::rename(folder / "first", folder / "second");
    const fs::path programs = folder / "second/bin";
    const std::string scan = shellWord((programs / "velmora-scan").native());

    const std::string report = shell(scan + " --version --verbose");
    EXPECT_THAT(report, HasSubstr("\n  libavformat "));
    EXPECT_THAT(report, Not(ContainsRegex("not found|is not there")));

    writeWav(folder / "audio/one.wav", oneSecond);
    fs::rename(encodeAudio(folder / "two.tta", oneSecond), folder / "audio/two.wav"); // libavformat's
    const std::string archive = shellWord(pack(folder / "set.zip", folder / "audio").native());
    EXPECT_THAT(shell(scan + " --json --quiet " + archive), ContainsRegex("\"seconds\": ?2(\\.0+)?,"));
    const std::string calls = systemCallsOf(scan + " --quiet " + archive);
    for (const char* const name : {"velmora-confine", "velmora-libav"}) {
        EXPECT_THAT(calls,
                    ContainsRegex("execve\\(\"" + (folder / "second/libexec/velmora" / name).native()));
    }

    shell(shellWord((programs / "velmora").native()) + " --render " +
          shellWord(folder.native() + "/pictures"));
    EXPECT_FALSE(namesIn(folder / "pictures").empty());
}

} // namespace
} // namespace velmora::test
