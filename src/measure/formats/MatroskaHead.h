#pragma once

// What a Matroska file states before its media, and when those begin.

#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"
#include "measure/formats/EbmlElement.h"

namespace velmora {

struct MatroskaHead {
    double timestampScale = 1e6; ///< nanoseconds
    double duration = 0;         ///< in units of the scale; 0 if not stated
    double begin = 0;            ///< when the first block begins, likewise
    Sampling sampling = {};      ///< of the first track that tells it
    bool hasAudio = false;
    bool hasOther = false; ///< tracks that are no audio, or that do not say what they are
};

/// Reads it from the elements of `segment` up to the first cluster.
MatroskaHead readMatroskaHead(GuardedReader& reader, const EbmlElement& segment);

} // namespace velmora
