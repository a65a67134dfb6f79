#pragma once

// Libav.h where the libraries are: in velmora-libav, or in a program that links them itself. Each operation
// is defined in the file of its subject: LibavContainer.cpp, LibavFile.cpp, PacketDecoder.cpp.

#include "measure/libav/Libav.h"

namespace velmora {

class DirectLibav final : public Libav {
public:
    std::optional<Timing> duration(GuardedReader& reader, std::int64_t start, const std::string& demuxer,
                                   Doubt doubt) const override;

    std::optional<ProbedDemuxer> probe(GuardedReader& reader, std::int64_t start,
                                       const std::filesystem::path& name) const override;

    std::int64_t decodedSamples(const char* decoder, std::span<const std::uint8_t> description,
                                std::span<const std::uint8_t> packet) const override;
};

} // namespace velmora
