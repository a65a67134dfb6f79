#include "system/EndingSignals.h"

#include "tests/support/NamedRow.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <optional>

namespace velmora::test {
namespace {

volatile std::sig_atomic_t handled = 0;

extern "C" void noteHandled(int signal) {
    handled = signal;
}

bool isReadable(int descriptor) {
    pollfd readable{descriptor, POLLIN, 0};
    return ::poll(&readable, 1, 0) == 1;
}

struct SignalRow : NamedRow {
    int number = 0;
};

class EndingSignal : public testing::TestWithParam<SignalRow> {};

TEST_P(EndingSignal, IsCaughtUntilItIsTaken) {
    EndingSignals signals;
    EXPECT_FALSE(isReadable(signals.descriptor()));
    EXPECT_FALSE(signals.take());

    std::raise(GetParam().number);

    EXPECT_TRUE(isReadable(signals.descriptor()));
    EXPECT_TRUE(signals.take());
    EXPECT_FALSE(isReadable(signals.descriptor()));
    EXPECT_FALSE(signals.take());
}

TEST_P(EndingSignal, DoesAfterwardsWhatItDidBefore) {
    handleEndingSignals(&noteHandled);
    {
        EndingSignals signals;
        std::raise(GetParam().number);
        EXPECT_TRUE(signals.take());
    }
    EXPECT_EQ(handled, 0) << "it was taken";
    std::raise(GetParam().number);
    EXPECT_EQ(handled, GetParam().number);
}

TEST_P(EndingSignal, IsRaisedAgainAtTheEndWhenItWasNotTaken) {
    handleEndingSignals(&noteHandled);
    {
        const EndingSignals signals;
        std::raise(GetParam().number);
        EXPECT_EQ(handled, 0);
    }
    EXPECT_EQ(handled, GetParam().number);
}

TEST_P(EndingSignal, StaysIgnoredWhereTheCallerIgnoresIt) {
    std::signal(GetParam().number, SIG_IGN);
    handleEndingSignals(&noteHandled);
    std::optional<EndingSignals> signals(std::in_place);
    std::raise(GetParam().number);
    EXPECT_FALSE(signals->take());
    signals.reset();
    std::raise(GetParam().number);
    EXPECT_EQ(handled, 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, EndingSignal,
                         testing::Values(SignalRow{"Interrupt", SIGINT}, SignalRow{"Terminate", SIGTERM},
                                         SignalRow{"HangUp", SIGHUP}),
                         &rowName<SignalRow>);

} // namespace
} // namespace velmora::test
