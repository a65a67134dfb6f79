#include "measure/LibavModule.h"

#include "measure/LibavContainer.h"
#include "measure/LibavFile.h"
#include "measure/PacketDecoder.h"

// The name that libavModuleSymbol gives.
extern "C" __attribute__((visibility("default"))) const velmora::LibavModule velmoraLibavModule = {
    &velmora::containerDuration, &velmora::walkedContainerDuration, &velmora::chosenDemuxer,
    &velmora::decodedSamples};
