#include "measure/libav/LibavDuration.h"

#include <dlfcn.h>

namespace velmora {

namespace {

/// Null if the module, or a library it needs, is missing. It stays loaded until the program ends.
const LibavModule* loadModule() {
    void* const module = ::dlopen(libavModuleFile, RTLD_NOW | RTLD_LOCAL);
    return module == nullptr ? nullptr : static_cast<const LibavModule*>(::dlsym(module, libavModuleSymbol));
}

const LibavModule* libav() {
    static const LibavModule* const module = loadModule();
    return module;
}

} // namespace

std::optional<Timing> libavDuration(GuardedReader& reader, std::int64_t start, const std::string& demuxer) {
    return libav() == nullptr ? std::nullopt : libav()->duration(reader, start, demuxer);
}

std::optional<Timing> libavWalkedDuration(GuardedReader& reader, std::int64_t start,
                                          const std::string& demuxer) {
    return libav() == nullptr ? std::nullopt : libav()->walkedDuration(reader, start, demuxer);
}

std::optional<ProbedDemuxer> probeDemuxer(GuardedReader& reader, std::int64_t start,
                                          const std::filesystem::path& name) {
    return libav() == nullptr ? std::nullopt : libav()->probe(reader, start, name);
}

std::int64_t libavDecodedSamples(const char* decoder, std::span<const std::uint8_t> description,
                                 std::span<const std::uint8_t> packet) {
    return libav() == nullptr ? 0 : libav()->decodedSamples(decoder, description, packet);
}

} // namespace velmora
