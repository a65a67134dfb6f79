#include "measure/libav/LibavModule.h"

namespace {

const velmora::LibavModule module;

} // namespace

// The name that libavModuleSymbol gives.
extern "C" __attribute__((visibility("default"))) const velmora::Libav* const velmoraLibav = &module;
