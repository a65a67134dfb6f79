// Every call to the system that a scan makes fails once, each in every way it can: here a sample, by
// `./dev bench faults` all of them.

#include "tests/faults/Extent.h"
#include "tests/faults/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <random>

namespace velmora::test {
namespace {

/// Kinds of calls, and the ways they can fail. A scan maps no memory itself (mmap); where the C library finds
/// none for a thread, pthread_create fails.
const std::vector<std::pair<std::string, std::vector<std::string>>> ways = {
    {"open", {"EIO", "EACCES", "EMFILE"}},
    {"list", {"EIO", "unknown"}},
    {"stat", {"EIO", "EACCES"}},
    {"read", {"EIO", "EINTR", "short"}},
    {"pread", {"EIO", "EINTR", "short"}},
    {"write", {"ENOSPC", "EIO", "EINTR", "short"}},
    {"copy_file_range", {"ENOSPC", "EIO", "EINTR", "EXDEV", "short"}},
    {"mkdir", {"ENOSPC", "EROFS"}},
    {"rename", {"EXDEV", "EIO"}},
    {"unlink", {"EIO", "EBUSY"}},
    {"flock", {"ENOLCK"}},
    {"descriptor", {"EMFILE"}},
    {"malloc", {"ENOMEM"}},
    {"pthread_create", {"EAGAIN"}},
    {"posix_spawn", {"EAGAIN", "ENOMEM"}},
    {"wait", {"EINTR"}},
    {"poll", {"EINTR"}},
};

/// How many of the calls of a kind fail in each of its ways, in the sample.
constexpr std::size_t sampled = 1;

std::vector<Call> callsOfKind(const Scene& scene, const std::string& kind) {
    std::vector<Call> calls;
    std::ranges::copy_if(scene.calls(), std::back_inserter(calls),
                         [&](const Call& call) { return call.kind == kind; });
    return calls;
}

/// What is to go wrong, one after the other.
std::vector<std::string> faults(const Scene& scene) {
    std::vector<std::string> chosen;
    std::size_t index = 0;
    std::mt19937 random(seed());
    for (const auto& [kind, hows] : ways) {
        const std::vector<Call> all = callsOfKind(scene, kind);
        EXPECT_FALSE(all.empty()) << "a scan makes no such call: " << kind;
        for (const std::string& how : hows) {
            std::vector<Call> calls;
            if (everything()) {
                std::ranges::copy_if(all, std::back_inserter(calls),
                                     [&](const Call&) { return isOurs(index++); });
            } else {
                std::ranges::sample(all, std::back_inserter(calls), sampled, random);
            }
            for (const Call& call : calls) {
                chosen.push_back(call.kind + ":" + std::to_string(call.number) + ":" + how);
            }
        }
    }
    return chosen;
}

void expectNoComplaints(const Scene& scene, const std::vector<std::string>& chosen) {
    for (const std::string& fault : chosen) {
        const std::string complaints = scene.complaintsAbout(fault);
        EXPECT_TRUE(complaints.empty()) << "VELMORA_FAULT=" << fault << "\n" << complaints;
    }
    std::cout << chosen.size() << " faults, " << scene.calls().size() << " calls, seed " << seed() << "\n";
}

TEST(FailedCall, IsNeitherAWrongTotalNorALossNorACrash) {
    const Scene scene;
    expectNoComplaints(scene, faults(scene));
}

/// A reader that takes a failed read for the end of the file gives a length that looks right.
TEST(FailedCall, OfAnyReadOfATrackIsNoWrongLength) {
    const Scene scene;
    constexpr int reads = 12; // the last of which no track needs
    constexpr int firstReads = 3;
    std::mt19937 random(seed());
    std::uniform_int_distribution<int> anyFirst(1, firstReads);
    std::vector<std::string> chosen;
    std::size_t index = 0;
    for (const std::string track : {"2.flac", "3.mp3", "4.ogg", "5.m4a", "6.wma", "7.mka", "8.aiff"}) {
        const int drawn = anyFirst(random);
        for (int number = 1; number <= reads; ++number) {
            if (everything() ? isOurs(index++) : number == drawn) {
                chosen.push_back("pread:" + std::to_string(number) + ":EIO:" + track);
            }
        }
    }
    expectNoComplaints(scene, chosen);
}

} // namespace
} // namespace velmora::test
