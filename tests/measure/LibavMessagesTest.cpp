// What the helper's answers say after their way through a socket, and that nonsense says nothing.

#include "measure/libav/Messages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace velmora::test {
namespace {

const Timing walked{.seconds = 12.5,
                    .basis = Basis::counted,
                    .stated = 13.0,
                    .doubt = Doubt::disagrees,
                    .frames = 7,
                    .way = Way::libavformat,
                    .sampling = {48'000, 2}};

Reply replyWith(const std::optional<Timing>& timing) {
    Reply reply;
    putTiming(reply, timing);
    return reply;
}

std::optional<ProbedDemuxer> sent(const std::string& name, bool isMedia) {
    Reply reply;
    putDemuxer(reply, ProbedDemuxer{name, isMedia});
    return demuxerIn(reply);
}

TEST(LibavMessages, CarryATiming) {
    EXPECT_EQ(timingIn(replyWith(walked)), walked);
    Timing unstated = walked;
    unstated.stated = {};
    EXPECT_EQ(timingIn(replyWith(unstated)), unstated);
    EXPECT_EQ(timingIn(replyWith({})), std::nullopt);
}

TEST(LibavMessages, SayNothingWhereATimingIsNone) {
    Reply reply = replyWith(walked);
    reply.basis = static_cast<Basis>(static_cast<int>(Basis::sized) + 1);
    EXPECT_EQ(timingIn(reply), std::nullopt);
    reply = replyWith(walked);
    reply.doubt = static_cast<Doubt>(static_cast<int>(Doubt::disagrees) + 1);
    EXPECT_EQ(timingIn(reply), std::nullopt);
    reply = replyWith(walked);
    reply.frames = -1;
    EXPECT_EQ(timingIn(reply), std::nullopt);
    reply.frames = 0;
    EXPECT_TRUE(timingIn(reply));
}

TEST(LibavMessages, CarryADemuxersName) {
    for (const bool isMedia : {false, true}) {
        const std::optional<ProbedDemuxer> demuxer = sent("matroska,webm", isMedia);
        ASSERT_TRUE(demuxer);
        EXPECT_EQ(demuxer->name, "matroska,webm");
        EXPECT_EQ(demuxer->isMedia, isMedia);
    }
    EXPECT_FALSE(demuxerIn(Reply()));
    const std::size_t room = Reply().demuxer.size() - 1;
    EXPECT_EQ(sent(std::string(room + 9, 'x'), true)->name, std::string(room, 'x'));
}

TEST(LibavMessages, SayNothingWhereADemuxersNameIsNone) {
    for (const char* const name : {"a b", "a\nb", "caf\xC3\xA9", "\x7F"}) {
        EXPECT_FALSE(sent(name, true)) << name;
    }
    EXPECT_TRUE(sent("!~", true));
}

} // namespace
} // namespace velmora::test
