// Every seed, and every input that once broke a promise, again.

#include "fuzz/Targets.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace velmora::fuzz {
namespace {

const std::filesystem::path folder = VELMORA_FUZZ_DIR;

std::string testName(const std::string& target) {
    std::string name = target;
    std::ranges::replace(name, '-', '_'); // the only letter of targets that tests may not have
    return name;
}

/// The names in one of the folders of inputs, which is missing while there are none.
std::vector<std::string> inputsIn(const std::filesystem::path& inputs) {
    return std::filesystem::exists(folder / inputs) ? test::namesIn(folder / inputs)
                                                    : std::vector<std::string>();
}

class Replay : public testing::TestWithParam<Target> {};

TEST_P(Replay, KeepsEveryPromise) {
    EXPECT_NO_THROW(GetParam().run({})) << "nothing";
    int replayed = 0;
    for (const std::string inputs : {"seeds", "found"}) {
        for (const std::string& name : inputsIn(std::filesystem::path(inputs) / GetParam().name)) {
            const std::string content = test::read(folder / inputs / GetParam().name / name);
            const test::Bytes bytes(content.begin(), content.end());
            EXPECT_NO_THROW(GetParam().run(bytes)) << inputs << "/" << GetParam().name << "/" << name;
            ++replayed;
        }
    }
    EXPECT_GT(replayed, 0) << "there are no seeds";
}

INSTANTIATE_TEST_SUITE_P(Targets, Replay, testing::ValuesIn(allTargets()),
                         [](const auto& row) { return testName(row.param.name); });

TEST(ReplayedInputs, BelongToTargets) {
    std::set<std::string> names;
    for (const Target& target : allTargets()) {
        EXPECT_TRUE(names.insert(target.name).second) << target.name << " twice";
    }
    for (const std::string inputs : {"seeds", "found"}) {
        for (const std::string& name : inputsIn(inputs)) {
            EXPECT_TRUE(names.contains(name)) << inputs << "/" << name;
        }
    }
}

} // namespace
} // namespace velmora::fuzz
