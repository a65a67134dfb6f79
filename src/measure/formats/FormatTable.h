#pragma once

// Every format that the program knows, and the contract of its readers. Add a format here:
//
//   1. its reader, a file in this folder, which keeps the contract of `FormatReader`;
//   2. its row in the table in FormatTable.cpp;
//   3. a file in bench/accuracy/corpus that makes it, with the length it truly has;
//   4. a test in tests/measure, with a file of a real encoder if there is one.
//
// An extension that is new, too, goes into records/AudioExtensions.

#include "measure/bytes/ByteSource.h"
#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/Timing.h"
#include "records/FormatName.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace velmora {

/// Times the format that begins at byte `start` of the file, after any ID3v2 tag.
///
///   absent    the reader cannot tell: the content is damaged, or in a form it does not know. libavformat is
///             asked with the demuxer of the row, then ffprobe.
///   0         it is the format, and nothing in it plays. No other tool is asked.
///   positive  the length, finite, with the grounds for it (Timing.h).
///
/// It reads through `reader` only and opens no file. What it reads in search of audio (headers, indices,
/// tables: `header` and `search`) is paid from a budget of 8 MiB and must be read within 10 s, after which
/// nothing can be read and the reader returns. Audio itself is read with `audio`, which costs nothing; a
/// search that has found a piece of audio and looks for the next calls `renew`. No number in the file is
/// trusted before it is checked against the size of the file.
///
/// A file is timed by one thread, many files at once by many; so a reader keeps nothing between its calls.
using FormatReader = std::optional<Timing> (*)(GuardedReader& reader, std::int64_t start);

/// A format that is known by its first bytes.
struct Format {
    FormatName name;          ///< for people
    std::string_view pattern; ///< that the content begins with; see `matches` in Magic.h
    FormatReader read;        ///< null if libavformat alone reads it
    std::string_view demuxer; ///< libavformat's, asked where `read` cannot tell; empty: it is not asked

    /// The most that a byte of such a file can play, in seconds, on average over the file. A length beyond it
    /// is a statement that the file cannot hold, whoever read it.
    double maxSecondsInByte;
};

/// In the order in which they are tried.
std::span<const Format> formats();

/// The format that begins at byte `start`; null if it is none of the table.
const Format* formatAt(GuardedReader& reader, std::int64_t start);

/// Reads the length off a whole file that its extension says is of this format. Positive and finite or
/// absent; reads a bounded part of `source` (OggDuration.h, AsfDuration.h). Any thread, many at once.
using HeaderReader = std::optional<Timing> (*)(const ByteSource& source);

/// A format that is known by the file's extension, and asked before any content is looked at.
struct HeaderFormat {
    std::string_view extension; ///< in lower case, without the dot
    FormatName name;            ///< for people
    HeaderReader read;
};

std::span<const HeaderFormat> headerFormats();

/// The format for the extension of `path`, in upper or lower case; null if it is none of the table.
const HeaderFormat* headerFormatOf(const std::filesystem::path& path);

} // namespace velmora
