#pragma once

// Decides under which name every packed file stands in the archive's folder. Names are bytes; only the
// comparison of names looks at letters.
//
//   roots /A and /B, files /A/01.wav, /B/01.wav, /B/01.WAV  ->  01.wav, 01 (2).wav, 01 (3).WAV
//   roots and files /A/README, /B/README                    ->  README, README (2).
//   roots /A and /B, files /A/live.wav, /B/live.wav/1.mp3   ->  live (2).wav, live.wav/1.mp3

#include "system/Paths.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmora {

/// The folders that names are relative to, in order of preference.
class Roots {
public:
    explicit Roots(const Paths& roots);

    /// `file` below the first of the roots it lies in, else its last component alone. Lexical: links are not
    /// followed. Takes time by the depth of `file`, however many roots there are.
    std::string relativePath(const std::filesystem::path& file) const;

private:
    /// A root with its final "/" -> its place in the list.
    std::unordered_map<std::string, std::size_t> m_ranks;
};

/// The names of `files`, in their order: the path relative to `roots`, numbered from 2 where the archive
/// already has it. Names are compared in lower case, and also with the folders the archive will have, so that
/// no file stands where another one needs a folder.
std::vector<std::string> entryNames(const Paths& files, const Paths& roots);

/// `base` followed by `ending`. The end of `base` is cut off, by whole characters, as far as its last
/// component would become longer than file systems allow (255 bytes).
std::string withEnding(std::string_view base, std::string_view ending);

} // namespace velmora
