#pragma once

// What the module with libavformat in it offers. libavformat brings more than a hundred libraries along,
// whose loading takes longer than measuring a thousand files; most scans need none of them. So they stand in
// a module of their own, which is loaded when the first file asks for it.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace velmora {

/// The demuxer that libavformat would choose.
struct ProbedDemuxer {
    std::string name;
    bool isMedia = false; ///< it reads one self-contained file with audio in it, and may be used
};

/// The module's operations; each as the function of the same purpose in LibavDuration.h.
struct LibavModule {
    std::optional<Timing> (*duration)(GuardedReader& reader, std::int64_t start, const std::string& demuxer);
    std::optional<Timing> (*walkedDuration)(GuardedReader& reader, std::int64_t start,
                                            const std::string& demuxer);
    std::optional<ProbedDemuxer> (*probe)(GuardedReader& reader, std::int64_t start,
                                          const std::filesystem::path& name);
    std::int64_t (*decodedSamples)(const char* decoder, std::span<const std::uint8_t> description,
                                   std::span<const std::uint8_t> packet);
};

/// The module's file, found beside the program's own libraries, and the one symbol it exports: a
/// `const LibavModule`.
inline constexpr const char* libavModuleFile = "velmora-libav.so";
inline constexpr const char* libavModuleSymbol = "velmoraLibavModule";

} // namespace velmora
