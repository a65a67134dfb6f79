#include "measure/libav/Libav.h"
#include "system/ChildProcess.h"

namespace velmora {

std::string libavReport() {
    return privateAnswer("velmora-libav", {"--versions"});
}

} // namespace velmora
