#include "measure/libav/Libav.h"

#include <dlfcn.h>

namespace velmora {

namespace {

/// Stands in where the module is missing.
class NoLibav final : public Libav {
public:
    std::optional<Timing> duration(GuardedReader& /*reader*/, std::int64_t /*start*/,
                                   const std::string& /*demuxer*/, Doubt /*doubt*/) const override {
        return std::nullopt;
    }

    std::optional<ProbedDemuxer> probe(GuardedReader& /*reader*/, std::int64_t /*start*/,
                                       const std::filesystem::path& /*name*/) const override {
        return std::nullopt;
    }

    std::int64_t decodedSamples(const char* /*decoder*/, std::span<const std::uint8_t> /*description*/,
                                std::span<const std::uint8_t> /*packet*/) const override {
        return 0;
    }
};

/// Null if the module, or a library it needs, is missing. It stays loaded until the program ends.
const Libav* loadModule() {
    void* const module = ::dlopen(libavModuleFile, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = module == nullptr ? nullptr : ::dlsym(module, libavModuleSymbol);
    return symbol == nullptr ? nullptr : *static_cast<const Libav* const*>(symbol);
}

} // namespace

const Libav& libav() {
    static const NoLibav none;
    static const Libav* const module = loadModule();
    return module == nullptr ? none : *module;
}

} // namespace velmora
