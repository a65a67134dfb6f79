// Every test process works in a temporary directory of its own, so that tests run beside each other and what
// a test leaves behind can be seen.

#include "system/RemoveTree.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::string directory = std::filesystem::temp_directory_path() / "test-velmora-XXXXXX";
    if (::mkdtemp(directory.data()) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    ::setenv("TMPDIR", directory.c_str(), 1);
    const int result = RUN_ALL_TESTS();
    velmora::removeTree(directory);
    return result;
}
