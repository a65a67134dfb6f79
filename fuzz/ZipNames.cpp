// The look into a zip archive for names that unzip would garble.

#include "fuzz/Targets.h"
#include "gather/GarbledZipNames.h"

namespace velmora::fuzz {

void fuzzZipNames(Bytes bytes) {
    const MemoryFile archive(bytes);
    const bool garbled = Collector::unzipGarblesNames(archive.path());
    require(Collector::unzipGarblesNames(archive.path()) == garbled,
            "the answer is the same the second time");
}

} // namespace velmora::fuzz
