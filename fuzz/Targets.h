#pragma once

// What is fuzzed: each target does with one input what the program does with untrusted bytes, and holds the
// answer to the promises made for it.

#include "fuzz/Harness.h"

#include <functional>
#include <string>
#include <vector>

namespace velmora::fuzz {

struct Target {
    std::string name;               ///< also of its folder in fuzz/seeds
    std::function<void(Bytes)> run; ///< throws `Violation`; any other exception is a fault, too
};

/// One for each reader of a format, see Readers.cpp.
std::vector<Target> readerTargets();

/// All there are, each name once.
std::vector<Target> allTargets();

void fuzzFrames(Bytes bytes);
void fuzzXing(Bytes bytes);
void fuzzTags(Bytes bytes);
void fuzzGuardedReader(Bytes bytes);
void fuzzMedia(Bytes bytes);
void fuzzFfprobeAnswer(Bytes bytes);
void fuzzZipNames(Bytes bytes);
void fuzzManifest(Bytes bytes);
void fuzzVersion(Bytes bytes);
void fuzzEntryNames(Bytes bytes);
void fuzzNaturalOrder(Bytes bytes);
void fuzzDropUrls(Bytes bytes);
void fuzzConfineRules(Bytes bytes);
void fuzzCommandLine(Bytes bytes);
void fuzzJson(Bytes bytes);
void fuzzShownNames(Bytes bytes);

} // namespace velmora::fuzz
