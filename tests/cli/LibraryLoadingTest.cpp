// Which libraries a scan loads: libavformat, with more than a hundred behind it, only for who needs it.

#include "cli/ScanProcess.h"
#include "support/RealAudio.h"
#include "support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// What a scan of `folder` opens, as strace shows it. All of it must be measured.
std::string opened(const fs::path& folder) {
    const fs::path log = freshFolder() / "opened";
    shell("strace -f -qq -e trace=openat,open -o " + shellWord(log.native()) + " " + shellWord(VELMORA_SCAN) +
          " -q " + shellWord(folder.native()));
    return read(log);
}

TEST(LibraryLoading, LeavesLibavformatOutWhereNoFileNeedsIt) {
    const fs::path folder = freshFolder();
    for (const char* name :
         {"a.wav", "b.mp3", "c.flac", "d.m4a", "e.ogg", "f.opus", "g.wma", "h.aac", "i.mka"}) {
        encodeAudio(folder / name, oneSecond);
    }
    const std::string files = opened(folder);
    EXPECT_THAT(files, HasSubstr("a.wav"));
    EXPECT_THAT(files, HasSubstr("libstdc++"));
    EXPECT_THAT(files, Not(HasSubstr("libavformat")));
}

TEST(LibraryLoading, LoadsLibavformatForTheFileThatNeedsIt) {
    const fs::path folder = freshFolder();
    encodeAudio(folder / "a.ra", oneSecond);
    EXPECT_THAT(opened(folder), HasSubstr("libavformat"));
}

} // namespace
} // namespace velmora::test
