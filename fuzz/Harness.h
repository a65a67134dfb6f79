#pragma once

// What the fuzzing targets share: promises that must hold, pieces of an input, and the two ways that a reader
// meets bytes, in memory and in a file.

#include "measure/bytes/ByteSource.h"
#include "measure/bytes/Timing.h"
#include "system/FileDescriptor.h"
#include "system/Paths.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::fuzz {

using Bytes = std::span<const std::uint8_t>;

/// A promise of the code was broken. Nothing catches it under libFuzzer, so the program aborts there; a
/// replayed test fails with what it says.
class Violation : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// Throws `Violation` with the text `promise` unless `holds`.
void require(bool holds, std::string_view promise);

/// Takes an input apart from front to back. What is used up gives zeros and empty texts.
class Input {
public:
    explicit Input(Bytes bytes)
        : m_rest(bytes) {}

    bool isUsedUp() const { return m_rest.empty(); }

    std::uint8_t byte();
    std::uint64_t number(); ///< 8 bytes, lowest first
    std::string text();     ///< the bytes before the next NUL, which is taken away too

    Bytes rest() const { return m_rest; }

private:
    Bytes m_rest;
};

/// All texts of `bytes`, which are separated by NUL, up to `most` of them.
std::vector<std::string> textsOf(Bytes bytes, std::size_t most);

/// The same as absolute paths.
Paths absolutePaths(Bytes bytes, std::size_t most);

/// A regular file that holds `bytes`, in no folder.
class MemoryFile {
public:
    explicit MemoryFile(Bytes bytes);

    std::filesystem::path path() const; ///< valid as long as this object

private:
    FileDescriptor m_descriptor;
};

/// How a length is found; the source counts what is read.
using Timer = std::function<std::optional<Timing>(const ByteSource&)>;

/// Holds `timer` to what every reader promises, for a file of these bytes: an answer is finite, at least 0
/// and at most `maxSeconds`; it is the same the second time, and by file; what is read stays within the
/// budget of a search and a few times the file; and the same, but for the answer's size, when the file is
/// cut off while it is read.
void checkTimer(const Timer& timer, Bytes bytes, double maxSeconds);

} // namespace velmora::fuzz
