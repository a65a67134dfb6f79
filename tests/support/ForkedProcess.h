#pragma once

// Runs a part of a test in a process of its own, for what must not happen to the others: giving up root's
// rights, getting a terminal, hitting a limit. Expectations that fail there fail the test.

#include <filesystem>
#include <functional>
#include <string>

namespace velmora::test {

using Body = std::function<void()>;

/// Runs `body` in a forked process.
void inProcess(const Body& body);

/// Runs `body` as a user without special rights, whose temporary directory is a fresh folder of their own.
void asOrdinaryUser(const Body& body);

/// Runs `body` as the leader of a session on a new terminal. Returns what was written to the terminal.
std::string onTerminal(const Body& body);

} // namespace velmora::test
