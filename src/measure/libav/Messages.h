#pragma once

// What the program and its helper velmora-libav say to each other, message by message over a Unix socket
// (SOCK_SEQPACKET). Both are built together, so numbers travel as they stand in memory. The helper's side may
// be in the hands of the file it reads: what it says is a number or a name, and never believed to be more.

#include "measure/bytes/GuardedReader.h"
#include "measure/libav/Libav.h"
#include "system/FileDescriptor.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace velmora {

/// Longer texts (names of files, mostly) are cut to this, in bytes.
inline constexpr std::size_t maxRequestText = 4096;

/// The most that is asked for by one `Reply::Kind::wantsBytes`.
inline constexpr std::int64_t maxServedBytes = 64 << 10;

/// From the program: an operation of `Libav`. A descriptor travels along: of the file, or of a file in memory
/// that holds the packet to decode. Without one, the helper asks for the bytes.
struct Request {
    enum class Operation : std::uint8_t { duration, probe, decodedSamples };

    Operation operation{};
    Doubt doubt{};
    std::int64_t start = 0;
    std::int64_t size = 0; ///< of the file or the packet, in bytes
    GuardedReader::Bounds bounds = {};
    std::uint32_t textBytes = 0;
    std::array<char, maxRequestText> text{}; ///< the demuxer, a hint to it, or the decoder
    std::uint32_t descriptionBytes = 0;      ///< what the container keeps for the decoder
    std::array<std::uint8_t, maxRequestText> description{};
};

/// From the helper.
struct Reply {
    enum class Kind : std::uint8_t {
        ready,      ///< a new child is there; a descriptor of its process travels along
        alive,      ///< the search goes on, within `bounds`
        wantsBytes, ///< `count` bytes from `offset` are to be sent, as `ServedBytes` and the bytes
        answer,
    };

    Kind kind{};
    std::uint8_t isKnown = 0; ///< not 0: there is an answer; as with the next four
    std::uint8_t isStated = 0;
    std::uint8_t isMedia = 0;
    std::uint8_t hasReadFailed = 0;
    std::uint8_t isLast = 0; ///< this child takes no further request
    Basis basis{};
    Doubt doubt{};
    GuardedReader::Bounds bounds = {}; ///< what is left of them
    std::int64_t offset = 0;
    std::int64_t count = 0;     ///< samples, in an answer
    std::int64_t bytesRead = 0; ///< through the descriptor
    double seconds = 0;
    double stated = 0;
    std::int64_t frames = 0;
    std::uint32_t rate = 0;         ///< of the sound; as `Sampling`
    std::uint16_t channels = 0;     ///< likewise
    std::array<char, 64> demuxer{}; ///< padded with zeros
};

struct ServedBytes {
    std::int64_t count = -1; ///< -1 if they cannot be read
};

/// The part of an answer that is a length, and the length in it. Absent if there is none.
void putTiming(Reply& reply, const std::optional<Timing>& timing);
std::optional<Timing> timingIn(const Reply& reply);

void putDemuxer(Reply& reply, const std::optional<ProbedDemuxer>& demuxer);
std::optional<ProbedDemuxer> demuxerIn(const Reply& reply);

/// Sends `head` and `tail` as one message, and `descriptor` along unless it is negative. False if the other
/// side is gone.
bool sendMessage(int socket, std::span<const std::uint8_t> head, std::span<const std::uint8_t> tail = {},
                 int descriptor = -1);

/// Waits for a message and fills `head` and as much of `tail` as was sent. Returns the bytes of the tail;
/// absent if the other side is gone, or sent less than a head. A descriptor that came along is put in
/// `descriptor`; without that, the system drops it.
std::optional<std::size_t> receiveMessage(int socket, std::span<std::uint8_t> head,
                                          std::span<std::uint8_t> tail = {},
                                          FileDescriptor* descriptor = nullptr);

/// The bytes of `value` in memory.
template <typename Value>
std::span<const std::uint8_t> bytesOf(const Value& value) {
    return {reinterpret_cast<const std::uint8_t*>(&value), sizeof value};
}

template <typename Value>
std::span<std::uint8_t> bytesOf(Value& value) {
    return {reinterpret_cast<std::uint8_t*>(&value), sizeof value};
}

} // namespace velmora
