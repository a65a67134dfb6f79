// Signals at any moment: whichever call a scan is about to make.

#include "tests/faults/Extent.h"
#include "tests/faults/Scene.h"
#include "tests/faults/Surroundings.h"
#include "tests/support/RealAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <iostream>
#include <random>

namespace velmora::test {
namespace {

using testing::IsEmpty;

/// The call before which something happens, as the fault injector takes it.
std::string at(const Call& call, const std::string& how) {
    return call.kind + ":" + std::to_string(call.number) + ":" + how;
}

TEST(KilledAtRandom, AScanLeavesNothingOnceTheNextHasStarted) {
    const Scene scene;
    std::mt19937 random(seed());
    std::uniform_int_distribution<std::size_t> any(0, scene.calls().size() - 1);
    const std::size_t kills = everything() ? 200 : 5;
    std::size_t done = 0;
    for (std::size_t i = 0; i < kills; ++i) {
        const std::string fault = at(scene.calls()[any(random)], "kill");
        if (!everything() || isOurs(i)) {
            const std::string complaints = scene.complaintsAfterDeathAt(fault);
            EXPECT_TRUE(complaints.empty()) << "VELMORA_FAULT=" << fault << "\n" << complaints;
            ++done;
        }
    }
    std::cout << done << " kills, seed " << seed() << "\n";
}

/// Continued after a stop, it goes on as if nothing had been.
TEST(SignalAtRandom, EndsAScanWithoutATraceOrComesTooLate) {
    const Scene scene;
    std::mt19937 random(seed());
    std::uniform_int_distribution<std::size_t> any(0, scene.calls().size() - 1);
    const std::size_t signals = everything() ? 200 : 2;
    std::size_t done = 0;
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGPIPE, SIGCONT}) {
        for (std::size_t i = 0; i < signals; ++i) {
            const std::string fault = at(scene.calls()[any(random)], "stop");
            if (!everything() || isOurs(i)) {
                const std::string complaints = scene.complaintsAboutSignal(fault, signal);
                EXPECT_TRUE(complaints.empty())
                    << "SIG" << ::sigabbrev_np(signal) << ", VELMORA_FAULT=" << fault << "\n"
                    << complaints;
                ++done;
            }
        }
    }
    std::cout << done << " signals, seed " << seed() << "\n";
}

/// A share that stops answering while a file on it is read.
class SilentShare : public testing::Test {
protected:
    SilentShare() {
        writeWav(folder / "1.wav", oneSecond);
        waitUntil([this] { return fs::exists(log) && read(log).find("! pread") != std::string::npos; });
    }

    void expectEnd() {
        EXPECT_EQ(process.wait().status, 130);
        EXPECT_THAT(namesIn(temporary), IsEmpty());
    }

    Launch::Variables environment() const {
        Launch::Variables variables = meeting("pread:1:block:1.wav", temporary);
        variables.emplace_back("VELMORA_FAULT_LOG", log);
        return variables;
    }

    const fs::path folder = freshFolder();
    const fs::path temporary = freshFolder();
    const fs::path log = freshFolder() / "log";
    ScanProcess process{{.arguments = {writeWav(folder / "1.wav", oneSecond)}, .environment = environment()}};
};

TEST_F(SilentShare, DoesNotKeepAScanFromItsEndAfterASignal) {
    process.send(SIGTERM);
    expectEnd();
}

TEST_F(SilentShare, DoesNotKeepAScanFromItsEndAfterTwo) {
    process.send(SIGINT);
    process.send(SIGINT);
    expectEnd();
}

} // namespace
} // namespace velmora::test
