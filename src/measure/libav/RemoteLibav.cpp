#include "measure/libav/Helper.h"
#include "measure/libav/Libav.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

template <typename Element, std::size_t size>
std::uint32_t putCut(std::array<Element, size>& place, std::span<const Element> content) {
    const std::size_t taken = std::min(size, content.size());
    std::copy_n(content.begin(), taken, place.begin());
    return static_cast<std::uint32_t>(taken);
}

/// `bytes` in a file in memory that nobody can change any more.
FileDescriptor sealed(std::span<const std::uint8_t> bytes) {
    FileDescriptor file(::memfd_create("packet", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    const bool isWritten =
        file && ::write(file.get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
        ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE) == 0;
    return isWritten ? std::move(file) : FileDescriptor();
}

/// Every operation in a child of velmora-libav. A child that fails costs what it was asked, and no more.
class RemoteLibav final : public Libav {
public:
    std::optional<Timing> duration(GuardedReader& reader, std::int64_t start, const std::string& demuxer,
                                   Doubt doubt) const override {
        Request request{.operation = Request::Operation::duration, .doubt = doubt, .start = start};
        const std::optional<Reply> reply = ask(request, demuxer, reader);
        return reply ? timingIn(*reply) : std::nullopt;
    }

    std::optional<ProbedDemuxer> probe(GuardedReader& reader, std::int64_t start,
                                       const std::filesystem::path& name) const override {
        Request request{.operation = Request::Operation::probe, .start = start};
        const std::optional<Reply> reply = ask(request, name.native(), reader);
        return reply ? demuxerIn(*reply) : std::nullopt;
    }

    std::int64_t decodedSamples(const char* decoder, std::span<const std::uint8_t> description,
                                std::span<const std::uint8_t> packet) const override {
        const FileDescriptor bytes = sealed(packet);
        Request request{.operation = Request::Operation::decodedSamples,
                        .size = static_cast<std::int64_t>(packet.size())};
        request.bounds.deadline = GuardedReader::Clock::now() + GuardedReader::searchTime;
        request.textBytes = putCut(request.text, std::span(std::string_view(decoder)));
        request.descriptionBytes = putCut(request.description, description);
        const std::optional<Reply> reply = bytes ? ask(request, bytes.get(), nullptr) : std::nullopt;
        return reply ? std::max<std::int64_t>(reply->count, 0) : 0;
    }

private:
    std::optional<Reply> ask(Request& request, std::string_view text, GuardedReader& reader) const {
        request.size = reader.size();
        request.bounds = reader.bounds();
        request.textBytes = putCut(request.text, std::span(text));
        const ByteSource& source = reader.source();
        const std::optional<Reply> reply =
            reader.isOver() ? std::nullopt : ask(request, source.descriptor, &reader);
        if (reply && source.noteReads) {
            source.noteReads(std::max<std::int64_t>(reply->bytesRead, 0), reply->hasReadFailed != 0);
        }
        return reply;
    }

    std::optional<Reply> ask(const Request& request, int descriptor, GuardedReader* reader) const {
        std::unique_ptr<HelperChild> child = m_helper.take();
        std::optional<Reply> reply = child ? child->answerTo(request, descriptor, reader) : std::nullopt;
        if (reply && reply->isLast == 0) {
            m_helper.giveBack(std::move(child));
        }
        return reply;
    }

    mutable Helper m_helper;
};

} // namespace

const Libav& libav() {
    // Never destroyed: threads that still measure when the program ends may be using it.
    static const Libav& remote = *new RemoteLibav;
    return remote;
}

} // namespace velmora
