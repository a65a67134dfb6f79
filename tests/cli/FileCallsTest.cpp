// How often velmora-scan asks the system for a folder, and for what comes out of an archive: each question is
// a round trip where files lie on another machine.

#include "tests/cli/ScanProcess.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Calls = std::vector<std::string>;

/// The calls that strace shows with `options` while `items` are scanned, without the process numbers.
Calls callsOf(const std::string& options, const std::vector<fs::path>& items) {
    const fs::path trace = freshFolder() / "trace";
    std::string words;
    for (const fs::path& item : items) {
        words += " " + shellWord(item.native());
    }
    // A program under observation cannot look for its leaks.
    tryShell("ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 strace -f -qq -y -s 4096 " + options + " -o " +
             shellWord(trace.native()) + " " + shellWord(VELMORA_SCAN) + words + " >/dev/null 2>&1");
    std::istringstream lines(read(trace));
    Calls calls;
    for (std::string line; std::getline(lines, line);) {
        calls.push_back(line.substr(std::min(line.find_first_not_of("0123456789 "), line.size())));
    }
    return calls;
}

Calls those(const Calls& calls, std::string_view text) {
    Calls result;
    std::ranges::copy_if(calls, std::back_inserter(result),
                         [&](const std::string& call) { return call.find(text) != std::string::npos; });
    return result;
}

TEST(FileCalls, OfAFolderAreFourWhateverIsInIt) {
    const fs::path parent = freshFolder();
    const fs::path folder = parent / "folder";
    fs::create_directory(folder);
    fs::create_symlink(".", folder / "link");
    for (int i = 0; i < 500; ++i) {
        write(folder / (std::to_string(i) + ".txt"));
    }
    EXPECT_THAT(callsOf("-P " + shellWord(folder.native()), {parent}),
                ElementsAre(HasSubstr("openat("), HasSubstr("getdents64("), HasSubstr("getdents64("),
                            HasSubstr("close(")));
}

TEST(FileCalls, OfAFileInAnArchiveAreALookAndItsRemoval) {
    const fs::path folder = freshFolder();
    shell("mkdir in && cd in && touch 1.member 2.member && tar cf ../set.tar . && cd .. && rm -r in", folder);
    // tar names it "./1.member".
    EXPECT_THAT(those(callsOf("-e trace=%file", {folder}), "\"1.member\""),
                ElementsAre(HasSubstr("statx("), HasSubstr("unlinkat(")));
}

TEST(FileCalls, AskForTheNextArchiveAlone) {
    const fs::path folder = freshFolder();
    shell("echo x >x && tar cf 1.tar x && tar cf 2.tar x", folder);
    const auto askedFor = [&](const std::vector<fs::path>& items) {
        return those(callsOf("-e trace=fadvise64", items), folder.native());
    };
    EXPECT_THAT(askedFor({folder / "1.tar"}), IsEmpty());
    EXPECT_THAT(askedFor({folder}), ElementsAre(AllOf(HasSubstr(".tar"), HasSubstr("POSIX_FADV_WILLNEED"))));
    EXPECT_THAT(askedFor({folder / "1.tar", folder / "2.tar"}), ElementsAre(HasSubstr("2.tar")));
}

} // namespace
} // namespace velmora::test
