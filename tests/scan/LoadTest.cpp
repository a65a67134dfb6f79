// Scan after scan in one process: none leaves memory, a descriptor or a file behind.

#include "system/TempRegistry.h"
#include "tests/faults/Extent.h"
#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <iterator>

namespace velmora::test {
namespace {

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

/// Bytes that the program has allocated; always 0 under a sanitizer, which allocates in its own way.
std::size_t allocated() {
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

class LoadTest : public ScanModelTest {
protected:
    /// Files that are timed in each way there is, archives, and one that is none.
    LoadTest() {
        writeWav(folder / "1.wav", oneSecond);
        for (const char* name :
             {"2.flac", "3.mp3", "4.m4a", "5.ogg", "6.ra"}) { // libavformat alone knows the last
            encodeAudio(folder / name, oneSecond);
        }
        shell("zip -q 7.zip 1.wav 3.mp3 && tar -czf 8.tgz 7.zip", folder);
        write(folder / "9.7z", "no archive at all");
    }

    void scan() {
        model->ingest({folder});
        awaitStatus("COMPLETE");
        EXPECT_EQ(model->summary().fileCount, 10);
        EXPECT_EQ(model->summary().unreadable, 1);
    }

    void resetAndDelete() {
        model->reset();
        TempRegistry::awaitDeletions();
    }

    const fs::path folder = freshFolder();
};

TEST_F(LoadTest, ManyScansInARowLeaveNothing) {
    const int scans = everything() ? 1000 : 50;
    createModel();
    for (int i = 0; i < 10; ++i) { // whatever is made once is made
        scan();
    }
    resetAndDelete();
    const std::size_t memory = allocated();
    const std::ptrdiff_t descriptors = openDescriptors();
    for (int i = 0; i < scans; ++i) {
        scan();
    }
    resetAndDelete();
    std::cout << scans << " scans in a row, " << static_cast<std::ptrdiff_t>(allocated() - memory)
              << " bytes more\n";
    EXPECT_LT(allocated(), memory + 50'000);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(temporaryItems(), std::vector<std::string>());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which keep what is freed

/// In bytes.
double resident() {
    std::ifstream file("/proc/self/statm");
    double all = 0;
    double pages = 0;
    file >> all >> pages;
    return pages * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

class MemoryTest : public ScanModelTest {};

TEST_F(MemoryTest, AResetGivesTheMemoryOfManyFilesBack) {
    constexpr int files = 100'000;
    createModel({[](const PathList&, const std::stop_token&, const Unpacking&) {
                     GatherResult found;
                     for (int i = 0; i < files; ++i) {
                         found.files.push_back(fs::path("/home/somebody/Music/Artist/Album") /
                                               ("Track number " + std::to_string(i) + ".flac"));
                     }
                     return found;
                 },
                 [](const fs::path& file, const std::stop_token&) {
                     return Measured{file, 1.0, 10};
                 }});
    const double before = resident();
    model->ingest({"/m"});
    awaitStatus("COMPLETE");
    const double taken = resident() - before;
    model->reset();
    EXPECT_GT(taken, 15e6);
    awaitThat([&] { return resident() - before < taken / 2; });
}

#endif

} // namespace
} // namespace velmora::test
