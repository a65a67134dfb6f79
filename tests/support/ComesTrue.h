#pragma once

// Waiting in tests with an event loop. For tests that link Qt Test.

#include <QTest>

#include <functional>

namespace velmora::test {

/// Milliseconds after which a test gives up. It only ends a test that hangs.
inline constexpr int patience = 60'000;

/// Whether `condition` comes to hold. Looks again and again, processes events meanwhile, and returns as soon
/// as it holds.
inline bool comesTrue(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, patience);
}

} // namespace velmora::test
