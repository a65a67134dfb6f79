#pragma once

// Calls on the session bus that nobody waits for.

#include <functional>

class QDBusMessage;
class QObject;

namespace velmora {

/// Makes `call` and returns at once. `answered` gets the reply later, on the main thread; it is never called
/// when the call fails, when there is no bus, or when `context` has gone by then.
void callBus(QObject* context, const QDBusMessage& call,
             std::function<void(const QDBusMessage& reply)> answered);

/// Sends what has no answer, a signal or a call whose reply is of no interest. Starts no service for it;
/// without a bus nothing happens.
void sendToBus(QDBusMessage message);

} // namespace velmora
