#include "measure/libav/LibavFile.h"

#include "measure/libav/DirectLibav.h"
#include "measure/libav/MediaDemuxers.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

namespace velmora {

namespace {

constexpr int ioBufferBytes = 32 << 10;

int refuseToOpen(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* /*url*/, int /*flags*/,
                 AVDictionary** /*options*/) {
    return AVERROR(EPERM);
}

int isInterrupted(void* reader) {
    return static_cast<const GuardedReader*>(reader)->isOver() ? 1 : 0;
}

/// The list in the form that libavformat takes.
std::string allMediaDemuxers() {
    std::string names;
    for (const FormatName name : mediaDemuxers) {
        names += names.empty() ? "" : ",";
        names += name.text();
    }
    return names;
}

/// True for a demuxer that reads one self-contained file with audio in it.
bool isMediaDemuxer(const AVInputFormat& demuxer) {
    return knownDemuxer(demuxer.name).isKnown();
}

} // namespace

LibavFile::LibavFile(GuardedReader& reader, std::int64_t start, const std::string& demuxer)
    : m_reader(reader)
    , m_start(start) {
    silenceLibav();
    const AVInputFormat* const format = av_find_input_format(demuxer.c_str());
    if (format == nullptr || !isMediaDemuxer(*format)) {
        return;
    }
    auto* const buffer = static_cast<unsigned char*>(av_malloc(ioBufferBytes));
    m_io = avio_alloc_context(buffer, ioBufferBytes, 0, this, &readBytes, nullptr, &seekBytes);
    m_context = avformat_alloc_context();
    if (m_io == nullptr || m_context == nullptr) {
        return;
    }
    m_context->pb = m_io;
    m_context->io_open = &refuseToOpen;
    m_context->interrupt_callback = {&isInterrupted, &m_reader};
    m_context->format_whitelist = av_strdup(allMediaDemuxers().c_str());
    avformat_open_input(&m_context, "", format, nullptr); // sets m_context to null if it fails
}

LibavFile::~LibavFile() {
    avformat_close_input(&m_context);
    if (m_io != nullptr) {
        av_freep(static_cast<void*>(&m_io->buffer));
        avio_context_free(&m_io);
    }
}

int LibavFile::readBytes(void* self, std::uint8_t* buffer, int count) {
    auto& file = *static_cast<LibavFile*>(self);
    const std::int64_t at = file.m_start + file.m_position;
    // The reader may end before the file that it reads from does.
    const auto left = std::clamp<std::int64_t>(file.m_reader.size() - at, 0, count);
    const std::size_t got = file.m_reader.search(at, {buffer, static_cast<std::size_t>(left)});
    file.m_position += static_cast<std::int64_t>(got);
    return got == 0 ? AVERROR_EOF : static_cast<int>(got);
}

std::int64_t LibavFile::seekBytes(void* self, std::int64_t offset, int whence) {
    auto& file = *static_cast<LibavFile*>(self);
    const std::int64_t size = file.m_reader.size() - file.m_start;
    std::int64_t target = offset;
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return size;
    case SEEK_CUR:
        target = av_sat_add64(file.m_position, offset);
        break;
    case SEEK_END:
        target = av_sat_add64(size, offset);
        break;
    default:
        break;
    }
    if (target < 0) {
        return AVERROR(EINVAL);
    }
    file.m_position = std::min(target, size); // at the end there is nothing to read, nor beyond
    return target;
}

void silenceLibav() {
    [[maybe_unused]] static const bool isSilent = [] {
        av_log_set_level(AV_LOG_QUIET);
        return true;
    }();
}

std::optional<ProbedDemuxer> DirectLibav::probe(GuardedReader& reader, std::int64_t start,
                                                const std::filesystem::path& name) const {
    constexpr std::size_t probeBytes = 64 << 10;
    silenceLibav();
    std::vector<std::uint8_t> bytes(probeBytes + AVPROBE_PADDING_SIZE);
    const std::size_t got = reader.search(start, std::span(bytes).first(probeBytes));
    std::ranges::fill(std::span(bytes).subspan(got), std::uint8_t{0});
    const AVProbeData data = {name.c_str(), bytes.data(), static_cast<int>(got), nullptr};
    const AVInputFormat* const demuxer = av_probe_input_format(&data, 1);
    return demuxer == nullptr ? std::nullopt
                              : std::optional(ProbedDemuxer{demuxer->name, isMediaDemuxer(*demuxer)});
}

} // namespace velmora
