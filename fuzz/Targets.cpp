#include "fuzz/Targets.h"

namespace velmora::fuzz {

std::vector<Target> allTargets() {
    std::vector<Target> targets = readerTargets();
    targets.insert(targets.end(), {
                                      {"frames", &fuzzFrames},
                                      {"xing", &fuzzXing},
                                      {"tags", &fuzzTags},
                                      {"guarded-reader", &fuzzGuardedReader},
                                      {"media", &fuzzMedia},
                                      {"ffprobe-answer", &fuzzFfprobeAnswer},
                                      {"zip-names", &fuzzZipNames},
                                      {"manifest", &fuzzManifest},
                                      {"version", &fuzzVersion},
                                      {"entry-names", &fuzzEntryNames},
                                      {"natural-order", &fuzzNaturalOrder},
                                      {"drop-urls", &fuzzDropUrls},
                                      {"confine-rules", &fuzzConfineRules},
                                      {"command-line", &fuzzCommandLine},
                                      {"json", &fuzzJson},
                                      {"shown-names", &fuzzShownNames},
                                  });
    return targets;
}

} // namespace velmora::fuzz
