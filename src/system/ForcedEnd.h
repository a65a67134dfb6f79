#pragma once

// The end of a program that cannot end in order: its work does not end, as when a thread reads from a share
// that has stopped answering, or there is no memory to go on with.

namespace velmora {

/// Removes the private directory, where there is one, and ends the program with `status`, whatever its other
/// threads do. Any thread.
[[noreturn]] void endNow(int status) noexcept;

/// Does so in two seconds at the latest, and at once when `ending` (EndingSignals::descriptor) becomes
/// readable. A program that ends by itself before that is not disturbed. Where no thread can be started
/// nothing happens.
void endSoon(int ending, int status);

} // namespace velmora
