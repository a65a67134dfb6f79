#include "tests/measure/check/Checking.h"

#include "measure/check/Check.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::test {

std::string made(std::string_view extension, std::string_view command, const AudioShape& shape) {
    return read(encodeAudio(freshFolder() / ("track." + std::string(extension)), command, shape));
}

std::string made(std::string_view extension, const AudioShape& shape) {
    return read(encodeAudio(freshFolder() / ("track." + std::string(extension)), shape));
}

Findings findingsIn(std::string_view bytes, const std::string& name) {
    const Checked checked = checkFile(write(freshFolder() / name, bytes));
    EXPECT_EQ(checked.error, 0);
    return checked.findings;
}

std::vector<FindingKind> kindsIn(std::string_view bytes, const std::string& name) {
    std::vector<FindingKind> kinds;
    for (const Finding& finding : findingsIn(bytes, name)) {
        kinds.push_back(finding.kind);
    }
    std::ranges::sort(kinds);
    return kinds;
}

Finding findingOf(FindingKind kind, std::string_view bytes, const std::string& name) {
    const Findings findings = findingsIn(bytes, name);
    const auto found = std::ranges::find(findings, kind, &Finding::kind);
    if (found == findings.end()) {
        ADD_FAILURE() << "nothing is " << nameOf(kind) << " in " << name;
        return {};
    }
    return *found;
}

std::string withBitTurned(std::string bytes) {
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x10);
    return bytes;
}

std::string withZeros(std::string bytes, std::size_t count) {
    return bytes.replace(bytes.size() / 2, count, std::string(count, '\0'));
}

std::string cut(const std::string& bytes, double part) {
    return bytes.substr(0, static_cast<std::size_t>(static_cast<double>(bytes.size()) * (1 - part)));
}

std::string noise(std::size_t count, std::uint32_t seed) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        seed = seed * 1'664'525U + 1'013'904'223U;
        bytes += static_cast<char>(seed >> 24);
    }
    return bytes;
}

} // namespace velmora::test
