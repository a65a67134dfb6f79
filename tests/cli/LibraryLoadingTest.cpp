// Which libraries a scan loads: libavformat and the more than a hundred that it needs are loaded only
// for a file that needs them, and only by the helper.

#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// The system calls of a scan of `folder`.
std::string callsOfScan(const fs::path& folder) {
    return systemCallsOf(shellWord(VELMORA_SCAN) + " -q " + shellWord(folder.native()));
}

TEST(LibraryLoading, LeavesLibavformatOutWhereNoFileNeedsIt) {
    const fs::path folder = freshFolder();
    for (const char* name :
         {"a.wav", "b.mp3", "c.flac", "d.m4a", "e.ogg", "f.opus", "g.wma", "h.aac", "i.mka"}) {
        encodeAudio(folder / name, oneSecond);
    }
    const std::string calls = callsOfScan(folder);
    EXPECT_THAT(calls, HasSubstr("a.wav"));
    EXPECT_THAT(calls, HasSubstr("libstdc++"));
    EXPECT_THAT(calls, Not(HasSubstr("libavformat")));
    EXPECT_THAT(calls, Not(HasSubstr("velmora-libav")));
}

TEST(LibraryLoading, LoadsLibavformatInTheHelperForTheFileThatNeedsIt) {
    const fs::path folder = freshFolder();
    encodeAudio(folder / "a.ra", oneSecond);
    std::set<std::string> helpers;
    std::set<std::string> loaders;
    std::istringstream calls(callsOfScan(folder));
    for (std::string process, call; calls >> process && std::getline(calls, call);) {
        if (call.find("execve(") != std::string::npos && call.find("/velmora-libav\"") != std::string::npos) {
            helpers.insert(process);
        } else if (call.find("libavformat.so") != std::string::npos) {
            loaders.insert(process);
        }
    }
    EXPECT_EQ(helpers.size(), 1);
    EXPECT_EQ(loaders, helpers);
}

} // namespace
} // namespace velmora::test
