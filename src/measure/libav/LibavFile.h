#pragma once

// A media file opened by libavformat that can reach nothing but our own descriptor: no second file, no
// network, whatever the content asks for. Scripts and playlists, which exist to name other files, are not
// among the demuxers allowed at all.

#include "measure/bytes/GuardedReader.h"

#include <cstdint>
#include <string>

struct AVFormatContext;
struct AVIOContext;

namespace velmora {

class LibavFile {
public:
    /// Opens what stands at byte `start` of `reader` with the demuxer named `demuxer`. `reader` must outlive
    /// the file; budget, deadline and stop token end every call into libavformat.
    LibavFile(GuardedReader& reader, std::int64_t start, const std::string& demuxer);
    ~LibavFile();
    LibavFile(const LibavFile&) = delete;
    LibavFile& operator=(const LibavFile&) = delete;

    /// Null if the demuxer is not allowed or refused the file.
    AVFormatContext* context() const { return m_context; }

private:
    static int readBytes(void* self, std::uint8_t* buffer, int count);
    static std::int64_t seekBytes(void* self, std::int64_t offset, int whence);

    GuardedReader& m_reader;
    std::int64_t m_start;
    std::int64_t m_position = 0;
    AVIOContext* m_io = nullptr;
    AVFormatContext* m_context = nullptr;
};

/// The libraries print to standard error unless told not to, once for the process.
void silenceLibav();

} // namespace velmora
