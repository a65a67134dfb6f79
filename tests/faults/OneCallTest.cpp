// Calls of which a single failure would cost most: a file of the user's, or what the user must not be shown.

#include "tests/faults/Surroundings.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace velmora::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class OneCall : public testing::Test {
protected:
    /// How often a call is made at most.
    static constexpr int calls = 12;

    /// Scans while the `number`th of the calls about `part` fails.
    Finished scan(const std::string& call, int number, const std::string& part,
                  std::vector<std::string> options = {}) const {
        options.insert(options.end(), {"-f", "Set"});
        return runToEnd(
            {.arguments = options,
             .folder = folder,
             .environment = meeting(call + ":" + std::to_string(number) + ":EIO:" + part, temporary)});
    }

    const fs::path folder = freshFolder();
    const fs::path temporary = freshFolder();
    const fs::path track = writeWav(folder / "Set" / "1.wav", oneSecond);
    const std::string trackLine = "1.000\t" + track.native() + "\n";
};

TEST_F(OneCall, ThatLooksAtTheDestinationLetsNoSourceBeReplaced) {
    shell("zip -q Set/source.zip Set/1.wav", folder);
    const fs::path source = folder / "Set" / "source.zip";
    const std::string before = read(source);
    for (int number = 1; number <= calls; ++number) {
        const Finished run = scan("stat", number, "source.zip", {"-z", source});
        EXPECT_EQ(run.status, 4) << number << ": " << run.errors;
        ASSERT_TRUE(read(source) == before) << number;
    }
}

TEST_F(OneCall, ThatLooksAtTheDestinationLetsNoFifoBeReplaced) {
    const fs::path fifo = folder / "fifo.zip";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    for (int number = 1; number <= calls; ++number) {
        const Finished run = scan("stat", number, "fifo.zip", {"-z", fifo});
        EXPECT_EQ(run.status, 4) << number << ": " << run.errors;
        ASSERT_TRUE(fs::is_fifo(fifo)) << number;
    }
}

TEST_F(OneCall, ThatListsAnExtractionLetsNoLinkLeadOutOfIt) {
    writeWav(folder / "private.wav", oneSecond);
    fs::create_symlink(folder / "private.wav", folder / "link.wav");
    shell("tar -cf Set/more.tar link.wav Set/1.wav", folder);
    for (int number = 1; number <= calls; ++number) {
        const Finished run = scan("list", number, "scan-velmora-");
        EXPECT_THAT(run.status, AnyOf(0, 1)) << number;
        EXPECT_THAT(run.output, Not(HasSubstr("link.wav"))) << number;
        EXPECT_THAT(run.output, HasSubstr(trackLine)) << number;
        EXPECT_THAT(namesIn(temporary), IsEmpty()) << number;
    }
}

TEST_F(OneCall, ThatAllocatesCostsNoFolder) {
    shell("zip -q Set/more.zip Set/1.wav", folder);
    for (int number = 1; number <= calls; ++number) {
        const Finished run = scan("malloc", number, "");
        EXPECT_THAT(run.errors, Not(HasSubstr("cannot read '" + (folder / "Set").native()))) << number;
        EXPECT_EQ(run.status == 0, run.errors.empty()) << number << ": " << run.errors;
    }
}

TEST_F(OneCall, ThatRemovesIsMadeAgain) {
    shell("zip -q Set/more.zip Set/1.wav", folder);
    for (const char* call : {"unlink", "open"}) {
        for (int number = 1; number <= calls; ++number) {
            scan(call, number, "scan-velmora-");
            EXPECT_THAT(namesIn(temporary), IsEmpty()) << call << " " << number;
        }
    }
}

} // namespace
} // namespace velmora::test
