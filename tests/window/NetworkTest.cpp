// What the window's program says to whom: nothing but to the display and the session's buses, on this
// machine.

#include "tests/support/Archives.h"
#include "tests/support/RealAudio.h"
#include "tests/window/WindowTest.h"

#include <gmock/gmock.h>

namespace velmora::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class NetworkTest : public WindowTest {};

TEST_F(NetworkTest, IsLeftAloneWhereTheProgramLooksForNoUpdates) {
    write(desktop.preferences() / "Orventa" / "Velmora.conf", "[General]\nupdateQuietCheck=false\n");
    tone("set/a.wav", 65);
    encodeAudio(folder / "b.ra", oneSecond); // for libavformat
    const fs::path trace = folder / "trace";
    velmora = std::make_unique<Process>(
        "strace",
        QStringList{"-f", "-qq", "-s", "200", "-e", "trace=execve,%network", "-o", text(trace), VELMORA,
                    text(pack(folder / "set.zip", folder / "set")), text(folder / "b.ra")},
        environment);
    awaitShown("00:01:06");
    desktop.press("ctrl+q");
    EXPECT_EQ(velmora->wait(), 0);

    const std::string calls = read(trace);
    EXPECT_THAT(calls, ContainsRegex("execve\\([^\n]*/unzip\""));
    EXPECT_THAT(calls, HasSubstr("connect("));
    EXPECT_THAT(calls, HasSubstr("socket(AF_UNIX"));
    EXPECT_THAT(calls, Not(ContainsRegex("socket(pair)?\\(AF_[^U]")));
}

} // namespace
} // namespace velmora::test
