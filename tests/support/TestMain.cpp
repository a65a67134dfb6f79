// Every test process works in a temporary directory of its own, so that tests run beside each other and what
// a test leaves behind can be seen.

#include "system/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const auto directory =
        velmora::TemporaryDirectory::makeUnique(std::filesystem::temp_directory_path() / "test-velmora-");
    if (!directory) {
        std::perror("cannot make a temporary directory");
        return 1;
    }
    ::setenv("TMPDIR", directory->path().c_str(), 1);
    return RUN_ALL_TESTS();
}
