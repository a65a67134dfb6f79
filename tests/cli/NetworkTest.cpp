// A scan asks nobody anything: it and its tools get no socket, but for the pair between program and helper.

#include "tests/support/Archives.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// The wall around a tool refuses the sockets that it asks for, as tar does to look for names of users.
const auto opensASocket = ContainsRegex("[^a-z](socket|connect|bind|listen|accept|accept4|sendto)"
                                        "(\\(| resumed>)[^\n]*\\) += [0-9]");
const auto asksForTheNetwork = ContainsRegex("(socket|socketpair)\\(AF_[^U]");

TEST(Network, IsLeftAloneByAScanAndItsTools) {
    const fs::path folder = freshFolder();
    const fs::path disc = freshFolder();
    writeWav(disc / "a.wav", oneSecond);
    for (const char* archive : {"a.zip", "b.tar", "c.tgz", "d.tbz", "e.txz", "f.7z"}) {
        pack(folder / archive, disc);
    }
    encodeAudio(folder / "g.ra", oneSecond);                 // for libavformat
    write(folder / "noise.wav", std::string(5'000, '\xA5')); // for ffprobe
    const std::string calls = systemCallsOf(shellWord(VELMORA_SCAN) + " " + shellWord(folder.native()));
    for (const char* program : {"/unzip\"", "/tar\"", "/bsdtar\"", "/ffprobe\"", "/velmora-libav\""}) {
        EXPECT_THAT(calls, ContainsRegex("execve\\([^\n]*" + std::string(program))) << "it was not asked";
    }
    EXPECT_THAT(calls, HasSubstr("socketpair(AF_UNIX"));
    EXPECT_THAT(calls, Not(opensASocket));
    EXPECT_THAT(calls, Not(asksForTheNetwork));
}

TEST(Network, WouldBeNoticed) {
    EXPECT_THAT(systemCallsOf("python3 -c 'import socket; socket.socket(socket.AF_UNIX)'"), opensASocket);
    EXPECT_THAT(systemCallsOf("python3 -c 'import socket; socket.socketpair(socket.AF_INET)'"),
                asksForTheNetwork);
}

} // namespace
} // namespace velmora::test
