// The readers of formats, one target each.

#include "fuzz/Targets.h"
#include "measure/formats/AdifDuration.h"
#include "measure/formats/AiffDuration.h"
#include "measure/formats/AmrDuration.h"
#include "measure/formats/ApeDuration.h"
#include "measure/formats/AsfDuration.h"
#include "measure/formats/AuDuration.h"
#include "measure/formats/AudibleDuration.h"
#include "measure/formats/CafDuration.h"
#include "measure/formats/DsdDuration.h"
#include "measure/formats/FlacDuration.h"
#include "measure/formats/FlashDuration.h"
#include "measure/formats/MatroskaDuration.h"
#include "measure/formats/Mp4Duration.h"
#include "measure/formats/MusepackDuration.h"
#include "measure/formats/OggDuration.h"
#include "measure/formats/RealMediaDuration.h"
#include "measure/formats/Sd2Duration.h"
#include "measure/formats/VocDuration.h"
#include "measure/formats/WavDuration.h"
#include "measure/formats/WavPackDuration.h"

#include <limits>

namespace velmora::fuzz {

namespace {

using Answer = std::optional<Timing>;

template <auto reader>
Answer guarded(const ByteSource& source) {
    GuardedReader bytes(source, {});
    return reader(bytes, 0);
}

template <auto reader>
Answer unguarded(const ByteSource& source) {
    const std::optional<double> seconds = reader(source);
    return seconds ? Answer(Timing{.seconds = *seconds}) : std::nullopt;
}

/// The input is the resource fork; the samples are a mebibyte.
Answer sd2Fork(GuardedReader& fork, std::int64_t /*start*/) {
    constexpr std::int64_t dataBytes = 1 << 20;
    return sd2Duration(fork, dataBytes);
}

struct Reader {
    const char* name;
    Answer (*read)(const ByteSource& source);
    double secondsInByte; ///< the most that one byte of the file can play; see below
};

/// For formats that may state any number of samples for any number of bytes: one block may hold them all.
constexpr double anything = std::numeric_limits<double>::infinity();

/// The rate may be as low as 1 Hz, so a byte of one-bit samples plays 8 s.
constexpr double oneBitSamples = 8;

/// The same for blocks of up to 65,536 samples and at least a byte.
constexpr double minBlocks = 65'536;

constexpr double speechFrames = 0.02; // 20 ms in a byte, when nothing is sent

/// Blocks of AAC of 1024 samples at 7350 Hz, of at least a byte.
constexpr double blocksOfAac = 1024 / 7350.0;

constexpr Reader readers[] = {
    {"adif", &guarded<&adifDuration>, blocksOfAac},
    {"aiff", &guarded<&aiffDuration>, anything},
    {"amr", &guarded<&amrDuration>, speechFrames},
    {"ape", &guarded<&apeDuration>, anything},
    {"asf", &unguarded<&HeaderDuration::asfSeconds>, anything},
    {"au", &guarded<&auDuration>, oneBitSamples},
    {"audible", &guarded<&audibleDuration>, speechFrames},
    {"caf", &guarded<&cafDuration>, anything},
    {"dsf", &guarded<&dsfDuration>, oneBitSamples},
    {"dsdiff", &guarded<&dsdiffDuration>, oneBitSamples},
    {"flac", &guarded<&flacDuration>, minBlocks},
    {"flac-frames", &guarded<&bareFlacDuration>, minBlocks},
    {"flash", &guarded<&flashDuration>, anything},
    {"matroska", &guarded<&matroskaDuration>, anything},
    {"mp4", &guarded<&mp4Duration>, anything},
    {"musepack", &guarded<&musepackDuration>, anything},
    {"ogg", &unguarded<&HeaderDuration::oggSeconds>, anything},
    {"realmedia", &guarded<&realMediaDuration>, anything},
    {"sd2", &guarded<&sd2Fork>, anything},
    {"voc", &guarded<&vocDuration>, minBlocks},
    {"wav", &guarded<&wavDuration>, minBlocks},
    {"wave64", &guarded<&wave64Duration>, minBlocks},
    {"wavpack", &guarded<&wavPackDuration>, anything},
};

} // namespace

std::vector<Target> readerTargets() {
    std::vector<Target> targets;
    for (const Reader& reader : readers) {
        targets.push_back({reader.name, [&reader](Bytes bytes) {
                               const double maxSeconds =
                                   bytes.empty() ? 0
                                                 : reader.secondsInByte * static_cast<double>(bytes.size());
                               checkTimer(reader.read, bytes, maxSeconds);
                           }});
    }
    return targets;
}

} // namespace velmora::fuzz
