#pragma once

// What a check finds wrong with an audio file that may play well: its content is not what its header, its
// index, its checksums or its name say.

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace velmora {

enum class FindingKind : std::uint8_t {
    truncated, ///< what is stated goes on beyond the end of the file
    longer,    ///< there is more audio than is stated
    offset,    ///< the clock of the first frame does not stand at 0
    damaged,   ///< frames do not hold their checksums, or something else stands between them
    foreign,   ///< the content is of another format than the file's extension says
    trailing,  ///< more than 64 KiB of what is neither audio nor a tag stand after the audio
};

inline constexpr std::array findingKinds = {FindingKind::truncated, FindingKind::longer,
                                            FindingKind::offset,    FindingKind::damaged,
                                            FindingKind::foreign,   FindingKind::trailing};

struct Finding {
    FindingKind kind = FindingKind::damaged;

    /// Seconds that the file states; absent where it states none, or where it is not about a length.
    std::optional<double> stated = {};

    /// Seconds of audio that were found, of `damaged` those that hold their checksums; of `offset` where the
    /// clock begins. Absent where they cannot be told.
    std::optional<double> found = {};

    bool operator==(const Finding&) const = default;
};

/// Of one file; a kind at most once.
using Findings = std::vector<Finding>;

/// What a check of one file comes to.
struct Checked {
    Findings findings;
    int error = 0; ///< the errno of the read that failed: the rest of the file was not looked at; 0: none

    bool operator==(const Checked&) const = default;
};

/// The word for `kind`: "truncated".
std::string_view nameOf(FindingKind kind);

/// What it means, for --help, on one line.
std::string_view meaningOf(FindingKind kind);

} // namespace velmora
