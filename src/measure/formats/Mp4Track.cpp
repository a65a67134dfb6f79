#include "measure/formats/Mp4Track.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/PartitionPoint.h"
#include "measure/formats/Mp4Sound.h"

#include <algorithm>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Header boxes state time scale, length and edits; the sample table tells how long the samples last ("stts"),
// and outranks the header. For a file that was cut off it tells what is left: "stco" how many chunks begin
// before the end, "stsc" the samples in them, "stsz" the samples of the last of these chunks that are whole.
//
// All boxes begin with version (1) and flags (3). In version 1 the fields marked * have 8 bytes, else 4.
//
//   box     fields after version and flags                                          ISO/IEC 14496-12
//   "tkhd"  created*, modified*, track (4)                                          section 8.3.2
//   "mdhd"  created*, modified*, time scale (4), duration* (all ones: not known)    section 8.4.2
//   "hdlr"  predefined (4), handler, four letters                                   section 8.4.3
//   "elst"  entries (4), each length*, media time*, speed (4)                       section 8.6.6
//   "stts"  entries (4), each samples (4), duration of one (4)                      section 8.6.1.2
//   "stsz"  size of all samples (4), or 0, samples (4), size of each (4)            section 8.7.3.2
//   "stsc"  entries (4), each first chunk (4, from 1), samples of a chunk from      section 8.7.4
//           there on (4), description (4)
//   "stco"  entries (4), each where a chunk stands (4); "co64" the same (8)         section 8.7.5

constexpr std::int64_t maxEdits = 4096;
constexpr std::int64_t maxSamples = 1LL << 31; // of a track: a year of the shortest frames

/// A version 1 box has its times in 8 bytes instead of 4.
bool isLong(GuardedReader& reader, const Mp4Box& box) {
    const Bytes version = reader.header(box.content, 1);
    return !version.empty() && version[0] == 1;
}

std::optional<std::int64_t> longWord(GuardedReader& reader, const Mp4Box& box, std::int64_t at) {
    const Bytes bytes = at + 8 <= box.size() ? reader.header(box.content + at, 8) : Bytes();
    return bytes.empty() ? std::nullopt : std::optional(static_cast<std::int64_t>(be64(bytes, 0)));
}

/// Reads "mdhd".
void readMediaHeader(GuardedReader& reader, const Mp4Box& box, Mp4Track& track) {
    constexpr std::uint32_t unknown = 0xFFFF'FFFF;
    if (isLong(reader, box)) {
        track.timeScale = mp4WordAt(reader, box, 20).value_or(0);
        track.mediaDuration = std::max<std::int64_t>(0, longWord(reader, box, 24).value_or(0));
    } else {
        track.timeScale = mp4WordAt(reader, box, 12).value_or(0);
        const std::uint32_t duration = mp4WordAt(reader, box, 16).value_or(0);
        track.mediaDuration = duration == unknown ? 0 : duration;
    }
}

/// Reads "elst".
void readEdits(GuardedReader& reader, const Mp4Box& box, Mp4Track& track) {
    const bool hasLongTimes = isLong(reader, box);
    const std::int64_t entryBytes = hasLongTimes ? 20 : 12;
    const std::int64_t count =
        std::min<std::int64_t>(mp4WordAt(reader, box, mp4FullBoxBytes).value_or(0), maxEdits);
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t at = mp4FullBoxBytes + 4 + i * entryBytes;
        if (hasLongTimes) {
            const auto length = longWord(reader, box, at);
            const auto mediaTime = longWord(reader, box, at + 8);
            if (length && mediaTime) {
                track.edits.push_back({*length, *mediaTime});
            }
        } else {
            const auto length = mp4WordAt(reader, box, at);
            const auto mediaTime = mp4WordAt(reader, box, at + 4);
            if (length && mediaTime) {
                track.edits.push_back({*length, static_cast<std::int32_t>(*mediaTime)});
            }
        }
    }
}

void readMedia(GuardedReader& reader, const Mp4Box& media, Mp4Track& track) {
    constexpr std::int64_t handlerAt = 8;
    forEachMp4Box(reader, media.content, media.end, [&](const Mp4Box& box) {
        if (box.type == mp4Type("mdhd")) {
            readMediaHeader(reader, box, track);
        } else if (box.type == mp4Type("hdlr")) {
            track.isAudio = mp4WordAt(reader, box, handlerAt) == mp4Type("soun");
        } else if (box.type == mp4Type("minf") && track.isAudio) {
            track.sampleTable = findMp4Box(reader, box, mp4Type("stbl"));
            track.sampling = track.sampleTable ? mp4Sampling(reader, *track.sampleTable) : Sampling();
        }
    });
}

/// A table of the sample table: its entries begin after a count.
struct Table {
    Mp4Box box;
    std::int64_t count = 0;

    static constexpr std::int64_t entriesAt = mp4FullBoxBytes + 4;
};

std::optional<Table> findTable(GuardedReader& reader, const Mp4Box& sampleTable, std::string_view type) {
    const auto box = findMp4Box(reader, sampleTable, mp4Type(type));
    const auto count = box ? mp4WordAt(reader, *box, mp4FullBoxBytes) : std::nullopt;
    return count ? std::optional(Table{*box, *count}) : std::nullopt;
}

/// A run of samples that stand one after the other.
struct Chunk {
    std::int64_t at = 0;
    std::int64_t firstSample = 0;
    std::int64_t samples = 0;
};

/// Where the chunks stand ("stco" or "co64", in ascending order).
class ChunkOffsets {
public:
    ChunkOffsets(GuardedReader& reader, const Mp4Box& sampleTable)
        : m_reader(reader)
        , m_table(findTable(reader, sampleTable, "stco"))
        , m_areLong(!m_table) {
        if (m_areLong) {
            m_table = findTable(reader, sampleTable, "co64");
        }
    }

    std::int64_t count() const { return m_table ? m_table->count : 0; }

    /// Absent if the table ends before.
    std::optional<std::int64_t> at(std::int64_t i) const {
        if (m_areLong) {
            return longWord(m_reader, m_table->box, Table::entriesAt + i * 8);
        }
        return mp4WordAt(m_reader, m_table->box, Table::entriesAt + i * 4);
    }

private:
    GuardedReader& m_reader;
    std::optional<Table> m_table;
    const bool m_areLong;
};

/// The last of `chunks` chunks, by "stsc".
Chunk lastChunk(GuardedReader& reader, const Table& runs, std::int64_t chunks, std::int64_t at) {
    Chunk chunk{at};
    for (std::int64_t i = 0; i < runs.count; ++i) {
        const std::int64_t entry = Table::entriesAt + i * 12;
        const auto first = mp4WordAt(reader, runs.box, entry);
        const auto samples = mp4WordAt(reader, runs.box, entry + 4);
        const std::int64_t next =
            i + 1 < runs.count ? mp4WordAt(reader, runs.box, entry + 12).value_or(0) : chunks + 1;
        if (!first || !samples || *first > chunks) {
            break;
        }
        chunk.samples = *samples;
        const std::int64_t before = std::clamp<std::int64_t>(std::min(next, chunks) - *first, 0, 1LL << 29);
        chunk.firstSample = std::min(chunk.firstSample + before * *samples, maxSamples);
    }
    return chunk;
}

/// How many samples of `chunk` end before `end`, by "stsz".
std::int64_t samplesBefore(GuardedReader& reader, const Mp4Box& sizes, const Chunk& chunk, std::int64_t end) {
    const std::int64_t common = mp4WordAt(reader, sizes, mp4FullBoxBytes).value_or(0);
    if (common > 0) {
        return std::min(chunk.samples, (end - chunk.at) / common);
    }
    std::int64_t whole = 0;
    std::int64_t position = chunk.at;
    while (whole < chunk.samples) {
        const auto size = mp4WordAt(reader, sizes, mp4FullBoxBytes + 8 + (chunk.firstSample + whole) * 4);
        if (!size || *size > end - position) {
            break;
        }
        position += *size;
        ++whole;
    }
    return whole;
}

/// The samples that stand before a place in the file.
struct Reach {
    std::int64_t samples = 0;
    bool isAll = true; ///< no chunk goes on after that place; also where there are no tables
};

Reach samplesBefore(GuardedReader& reader, const Mp4Box& sampleTable, std::int64_t end) {
    const auto sizes = findMp4Box(reader, sampleTable, mp4Type("stsz"));
    const auto runs = findTable(reader, sampleTable, "stsc");
    const ChunkOffsets offsets(reader, sampleTable);
    const std::int64_t chunks =
        partitionPoint(offsets.count(), [&](std::int64_t i) { return offsets.at(i).value_or(end) < end; });
    const bool isAll = chunks == offsets.count();
    if (!sizes || !runs || chunks == 0) {
        return {0, isAll};
    }
    const Chunk chunk = lastChunk(reader, *runs, chunks, offsets.at(chunks - 1).value_or(0));
    const std::int64_t whole = samplesBefore(reader, *sizes, chunk, end);
    return {chunk.firstSample + whole, isAll && whole == chunk.samples};
}

/// How long the first `samples` samples last, by "stts".
std::int64_t durationOfSamples(GuardedReader& reader, const Mp4Box& sampleTable, std::int64_t samples) {
    const auto times = findTable(reader, sampleTable, "stts");
    std::int64_t duration = 0;
    for (std::int64_t i = 0; times && i < times->count && samples > 0; ++i) {
        const auto count = mp4WordAt(reader, times->box, Table::entriesAt + i * 8);
        const auto units = mp4WordAt(reader, times->box, Table::entriesAt + i * 8 + 4);
        if (!count || !units) {
            break;
        }
        const std::int64_t taken = std::min<std::int64_t>(*count, samples);
        duration = std::min(duration + taken * (*units & 0x7FFF'FFFF), maxMp4Duration);
        samples -= taken;
    }
    return duration;
}

} // namespace

Mp4Track readMp4Track(GuardedReader& reader, const Mp4Box& box) {
    Mp4Track track;
    forEachMp4Box(reader, box.content, box.end, [&](const Mp4Box& part) {
        if (part.type == mp4Type("tkhd")) {
            track.id = mp4WordAt(reader, part, isLong(reader, part) ? 20 : 12).value_or(0);
        } else if (part.type == mp4Type("edts")) {
            if (const auto edits = findMp4Box(reader, part, mp4Type("elst"))) {
                readEdits(reader, *edits, track);
            }
        } else if (part.type == mp4Type("mdia")) {
            readMedia(reader, part, track);
        }
    });
    return track;
}

std::int64_t sampleTableDuration(GuardedReader& reader, const Mp4Track& track) {
    return track.sampleTable ? durationOfSamples(reader, *track.sampleTable, maxSamples) : 0;
}

bool beginsBefore(GuardedReader& reader, const Mp4Track& track, std::int64_t end) {
    if (!track.sampleTable) {
        return true;
    }
    const ChunkOffsets offsets(reader, *track.sampleTable);
    return offsets.count() == 0 || offsets.at(offsets.count() - 1).value_or(end) < end;
}

bool endsBefore(GuardedReader& reader, const Mp4Track& track, std::int64_t end) {
    return !track.sampleTable || samplesBefore(reader, *track.sampleTable, end).isAll;
}

std::int64_t mediaDurationBefore(GuardedReader& reader, const Mp4Track& track, std::int64_t end) {
    if (!track.sampleTable) {
        return 0;
    }
    const std::int64_t samples = samplesBefore(reader, *track.sampleTable, end).samples;
    return durationOfSamples(reader, *track.sampleTable, std::min(samples, maxSamples));
}

double editedSeconds(const Mp4Track& track, std::int64_t mediaDuration, std::int64_t movieScale) {
    const auto mediaSeconds = [&track](std::int64_t units) {
        return static_cast<double>(units) / static_cast<double>(track.timeScale);
    };
    double seconds = 0;
    bool hasEdit = false;
    for (const Mp4Edit& edit : track.edits) {
        if (edit.mediaTime < 0 || edit.mediaTime >= mediaDuration) {
            continue;
        }
        hasEdit = true;
        const double rest = mediaSeconds(mediaDuration - edit.mediaTime);
        const bool isBounded = edit.length > 0 && movieScale > 0;
        seconds += isBounded
                       ? std::min(rest, static_cast<double>(edit.length) / static_cast<double>(movieScale))
                       : rest;
    }
    return hasEdit ? seconds : mediaSeconds(mediaDuration);
}

} // namespace velmora
