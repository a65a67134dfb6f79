// Which libraries a scan loads: libavformat and the more than a hundred that it needs are loaded only
// for a file that needs them.

#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
}

TEST(LibraryLoading, LoadsLibavformatForTheFileThatNeedsIt) {
    const fs::path folder = freshFolder();
    encodeAudio(folder / "a.ra", oneSecond);
    EXPECT_THAT(callsOfScan(folder), HasSubstr("libavformat"));
}

} // namespace
} // namespace velmora::test
