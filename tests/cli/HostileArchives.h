#pragma once

// Archives made to do harm, and what is in them for a scan. Each is made in a folder of its own, and most aim
// at a folder beside.

#include "tests/support/Files.h"
#include "tests/support/NamedRow.h"

#include <string>
#include <vector>

namespace velmora::test {

/// What an archive is made for and of.
struct Aim {
    fs::path set;        ///< the folder to make it in
    fs::path outside;    ///< a folder of the user's
    fs::path victim;     ///< an audio file in there, not of one second
    std::string song;    ///< the content of an audio file of one second
    std::string upwards; ///< a relative path from an extraction directory to `outside`
};

struct HostileArchive : NamedRow {
    void (*make)(const Aim& aim);
    int songs = 0;      ///< how many audio files of one second are found in it
    int complaints = 0; ///< how many archives, folders and files are named as not read
};

const std::vector<HostileArchive>& hostileArchives();

} // namespace velmora::test
