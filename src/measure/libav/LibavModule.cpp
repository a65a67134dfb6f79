#include "measure/libav/LibavModule.h"

#include "measure/libav/LibavContainer.h"
#include "measure/libav/LibavFile.h"
#include "measure/libav/PacketDecoder.h"

// The name that libavModuleSymbol gives.
extern "C" __attribute__((visibility("default"))) const velmora::LibavModule velmoraLibavModule = {
    &velmora::containerDuration, &velmora::walkedContainerDuration, &velmora::chosenDemuxer,
    &velmora::decodedSamples};
