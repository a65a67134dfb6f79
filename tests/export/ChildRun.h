#pragma once

// Runs work in a forked process, where limits and identities can be changed without touching the tests' own.

#include <functional>
#include <string>

namespace velmora::test {

/// Runs `work` in a child and returns what it returned. A child that does not come to the end of `work` is a
/// test failure.
std::string inChild(const std::function<std::string()>& work);

/// For the child: becomes an ordinary user if it is root.
void becomeOrdinaryUser();

} // namespace velmora::test
