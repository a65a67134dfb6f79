#include "measure/libav/Messages.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace velmora {

namespace {

/// Room for one descriptor beside a message.
union DescriptorRoom {
    cmsghdr alignment;
    std::array<char, CMSG_SPACE(sizeof(int))> bytes;
};

FileDescriptor descriptorIn(msghdr& message) {
    const cmsghdr* const part = CMSG_FIRSTHDR(&message);
    int descriptor = -1;
    if (part != nullptr && part->cmsg_level == SOL_SOCKET && part->cmsg_type == SCM_RIGHTS &&
        part->cmsg_len == CMSG_LEN(sizeof descriptor)) {
        std::memcpy(&descriptor, CMSG_DATA(part), sizeof descriptor);
    }
    return FileDescriptor(descriptor);
}

} // namespace

void putTiming(Reply& reply, const std::optional<Timing>& timing) {
    if (timing) {
        reply.isKnown = 1;
        reply.seconds = timing->seconds;
        reply.basis = timing->basis;
        reply.isStated = timing->stated ? 1 : 0;
        reply.stated = timing->stated.value_or(0);
        reply.doubt = timing->doubt;
        reply.frames = timing->frames;
        reply.rate = timing->sampling.rate;
        reply.channels = timing->sampling.channels;
    }
}

std::optional<Timing> timingIn(const Reply& reply) {
    if (reply.isKnown == 0 || reply.basis > Basis::sized || reply.doubt > Doubt::disagrees ||
        reply.frames < 0) {
        return std::nullopt;
    }
    return Timing{.seconds = reply.seconds,
                  .basis = reply.basis,
                  .stated = reply.isStated != 0 ? std::optional(reply.stated) : std::nullopt,
                  .doubt = reply.doubt,
                  .frames = reply.frames,
                  .way = Way::libavformat,
                  .sampling = samplingOf(reply.rate, reply.channels)};
}

void putDemuxer(Reply& reply, const std::optional<ProbedDemuxer>& demuxer) {
    if (demuxer) {
        reply.isKnown = 1;
        reply.isMedia = demuxer->isMedia ? 1 : 0;
        std::ranges::copy(demuxer->name.substr(0, reply.demuxer.size() - 1), reply.demuxer.begin());
    }
}

std::optional<ProbedDemuxer> demuxerIn(const Reply& reply) {
    const auto end = std::ranges::find(reply.demuxer, '\0');
    const bool isName = std::all_of(reply.demuxer.begin(), end, [](char c) { return c > ' ' && c <= '~'; });
    return reply.isKnown != 0 && isName
               ? std::optional(ProbedDemuxer{std::string(reply.demuxer.begin(), end), reply.isMedia != 0})
               : std::nullopt;
}

bool sendMessage(int socket, std::span<const std::uint8_t> head, std::span<const std::uint8_t> tail,
                 int descriptor) {
    std::array<iovec, 2> parts = {iovec{const_cast<std::uint8_t*>(head.data()), head.size()},
                                  iovec{const_cast<std::uint8_t*>(tail.data()), tail.size()}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    DescriptorRoom room{};
    if (descriptor >= 0) {
        message.msg_control = &room;
        message.msg_controllen = sizeof room;
        cmsghdr* const part = CMSG_FIRSTHDR(&message);
        part->cmsg_level = SOL_SOCKET;
        part->cmsg_type = SCM_RIGHTS;
        part->cmsg_len = CMSG_LEN(sizeof descriptor);
        std::memcpy(CMSG_DATA(part), &descriptor, sizeof descriptor);
    }
    ssize_t sent = 0;
    do {
        sent = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(head.size() + tail.size());
}

std::optional<std::size_t> receiveMessage(int socket, std::span<std::uint8_t> head,
                                          std::span<std::uint8_t> tail, FileDescriptor* descriptor) {
    std::array<iovec, 2> parts = {iovec{head.data(), head.size()}, iovec{tail.data(), tail.size()}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    DescriptorRoom room{};
    if (descriptor != nullptr) {
        message.msg_control = &room;
        message.msg_controllen = CMSG_LEN(sizeof(int)); // room for no second one
    }
    ssize_t got = 0;
    do {
        got = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    if (got > 0 && descriptor != nullptr) {
        *descriptor = descriptorIn(message);
    }
    const auto headBytes = static_cast<ssize_t>(head.size());
    return got > 0 && got >= headBytes ? std::optional(static_cast<std::size_t>(got - headBytes))
                                       : std::nullopt;
}

} // namespace velmora
