#include "tests/support/Snapshot.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

namespace velmora::test {

namespace {

std::string stateOf(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    std::ostringstream state;
    state << std::oct << status.st_mode << std::dec << " owner " << status.st_uid << ':' << status.st_gid
          << " names " << status.st_nlink << " written " << status.st_mtim.tv_sec << '.'
          << status.st_mtim.tv_nsec << " changed " << status.st_ctim.tv_sec << '.' << status.st_ctim.tv_nsec;
    if (S_ISREG(status.st_mode)) {
        state << ' ' << read(path);
    } else if (S_ISLNK(status.st_mode)) {
        state << ' ' << fs::read_symlink(path).native();
    }
    return state.str();
}

} // namespace

Snapshot snapshotOf(const fs::path& folder) {
    Snapshot snapshot = {{".", stateOf(folder)}};
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        snapshot.emplace(entry.path().lexically_relative(folder), stateOf(entry.path()));
    }
    return snapshot;
}

} // namespace velmora::test
