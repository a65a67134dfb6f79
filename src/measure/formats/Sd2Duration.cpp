#include "measure/formats/Sd2Duration.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/Magic.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

namespace velmora {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t maxForkBytes = 1 << 20;
constexpr double maxChannels = 1e6; // and no text is taken for so many

/// AppleDouble: 0 magic, 24 entries (2 bytes), 26 the entries, 12 bytes each: id, offset, length. A file
/// without the magic is the fork itself.
std::optional<std::int64_t> resourceForkAt(GuardedReader& fork) {
    constexpr std::int64_t countAt = 24;
    constexpr std::int64_t entriesAt = 26;
    constexpr std::int64_t entryBytes = 12;
    constexpr std::uint32_t resourceFork = 2;
    const Bytes header = fork.header(0, entriesAt);
    if (!matches(header, std::string_view("\x00\x05\x16\x07", 4))) {
        return 0;
    }
    const int count = be16(header, countAt);
    for (int i = 0; i < count; ++i) {
        const Bytes entry = fork.header(entriesAt + i * entryBytes, entryBytes);
        if (entry.empty()) {
            return std::nullopt;
        }
        if (be32(entry, 0) == resourceFork) {
            return be32(entry, 4);
        }
    }
    return std::nullopt;
}

/// The text of a "STR " resource as a number.
std::optional<double> numberAt(GuardedReader& fork, std::int64_t at) {
    const Bytes lengths = fork.header(at, 5); // size of the resource (4), length of the text (1)
    if (lengths.empty()) {
        return std::nullopt;
    }
    const Bytes text = fork.header(at + 5, lengths[4]);
    const auto* const begin = reinterpret_cast<const char*>(text.data());
    double number = 0;
    const bool isNumber = std::from_chars(begin, begin + text.size(), number).ec == std::errc();
    return isNumber && number >= 1 ? std::optional(number) : std::nullopt;
}

struct Description {
    std::optional<double> sampleBytes;
    std::optional<double> rate;
    std::optional<double> channels;
};

/// Reads the references of one type: 0 id (2), 2 name (2), 4 where its data are (4, the highest byte apart),
/// 8 unused.
void readStrings(GuardedReader& fork, std::int64_t at, int count, std::int64_t dataAt,
                 Description& description) {
    constexpr std::int64_t referenceBytes = 12;
    constexpr int sampleBytesId = 1000;
    constexpr int rateId = 1001;
    constexpr int channelsId = 1002;
    for (int i = 0; i < count; ++i) {
        const Bytes reference = fork.header(at + i * referenceBytes, referenceBytes);
        if (reference.empty()) {
            return;
        }
        const int id = be16(reference, 0);
        const auto number = numberAt(fork, dataAt + (be32(reference, 4) & 0xFF'FFFF));
        if (id == sampleBytesId) {
            description.sampleBytes = number;
        } else if (id == rateId) {
            description.rate = number;
        } else if (id == channelsId) {
            description.channels = number;
        }
    }
}

/// A resource fork: 0 where its data are, 4 where its map is. The map: 24 where its types are, seen from the
/// map: their number less one (2), then each: name (4), resources less one (2), where its references are,
/// seen from the types (2).
Description describe(GuardedReader& fork, std::int64_t resourcesAt) {
    constexpr std::int64_t typeBytes = 8;
    Description description;
    const Bytes header = fork.header(resourcesAt, 8);
    if (header.empty()) {
        return description;
    }
    const std::int64_t dataAt = resourcesAt + be32(header, 0);
    const std::int64_t mapAt = resourcesAt + be32(header, 4);
    const Bytes listAt = fork.header(mapAt + 24, 2);
    if (listAt.empty()) {
        return description;
    }
    const std::int64_t typesAt = mapAt + be16(listAt, 0);
    const Bytes countLess = fork.header(typesAt, 2);
    const int types = countLess.empty() ? 0 : be16(countLess, 0) + 1;
    for (int i = 0; i < types; ++i) {
        const Bytes type = fork.header(typesAt + 2 + i * typeBytes, typeBytes);
        if (type.empty()) {
            break;
        }
        if (matches(type, "STR ")) {
            const int count = be16(type, 4) + 1;
            readStrings(fork, typesAt + be16(type, 6), count, dataAt, description);
        }
    }
    return description;
}

} // namespace

std::optional<Timing> sd2Duration(const std::filesystem::path& name, std::int64_t dataBytes,
                                  const std::stop_token& stop) {
    const auto fork = RegularFile::open(name.parent_path() / ("._" + name.filename().native()));
    if (!fork || fork->size() > maxForkBytes) {
        return std::nullopt;
    }
    GuardedReader reader(sourceOf(*fork), stop);
    return sd2Duration(reader, dataBytes);
}

std::optional<Timing> sd2Duration(GuardedReader& fork, std::int64_t dataBytes) {
    const auto resourcesAt = resourceForkAt(fork);
    if (!resourcesAt) {
        return std::nullopt;
    }
    const Description description = describe(fork, *resourcesAt);
    if (!description.sampleBytes || !description.rate || !description.channels) {
        return std::nullopt;
    }
    const double seconds =
        static_cast<double>(dataBytes) / *description.sampleBytes / *description.channels / *description.rate;
    const Sampling sampling = samplingOf(
        *description.rate, static_cast<std::int64_t>(std::min(*description.channels, maxChannels)));
    return seconds > 0
               ? std::optional(Timing{.seconds = seconds, .basis = Basis::sized, .sampling = sampling})
               : std::nullopt;
}

} // namespace velmora
