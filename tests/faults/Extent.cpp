#include "tests/faults/Extent.h"

#include <cstdlib>
#include <sstream>
#include <string>

namespace velmora::test {

bool everything() {
    return std::getenv("VELMORA_FAULTS") != nullptr;
}

bool isOurs(std::size_t index) {
    std::istringstream share(std::getenv("VELMORA_FAULTS"));
    std::size_t part = 0;
    std::size_t parts = 0;
    char slash = 0;
    share >> part >> slash >> parts;
    return index % parts == part % parts;
}

unsigned seed() {
    const char* given = std::getenv("VELMORA_SEED");
    return given == nullptr ? 1 : static_cast<unsigned>(std::stoul(given));
}

} // namespace velmora::test
