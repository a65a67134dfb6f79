// What is asked for ahead of the workers: which files, in which order, how far ahead; and that no worker
// waits for it.

#include "scan/ReadAhead.h"

#include "scan/MeasuringStage.h"
#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <latch>
#include <new>
#include <ranges>

namespace {

std::atomic<int> lookedUp = 0; ///< names, since a test set it

} // namespace

/// Stands between this program and the C library.
int stat(const char* path, struct stat* status) noexcept {
    ++lookedUp;
    return ::fstatat(AT_FDCWD, path, status, 0);
}

namespace velmora::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

ino_t inodeOf(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_ino;
}

Paths byInode(Paths files) {
    std::ranges::sort(files, {}, inodeOf);
    return files;
}

/// `count` files in scan order, which is against the order of their inodes.
Paths realFiles(int count) {
    const fs::path folder = freshFolder();
    Paths files;
    for (int i = 0; i < count; ++i) {
        files.push_back(write(folder / (std::to_string(i) + ".wav")));
    }
    files = byInode(std::move(files));
    std::ranges::reverse(files);
    return files;
}

FilePaths listed(const Paths& files) {
    return {files.begin(), files.end()};
}

WorthAsking always(const fs::path& /*file*/) {
    return WorthAsking::content;
}

/// What is asked for, written down.
class Asked {
public:
    ReadAhead readAhead(std::function<WorthAsking(const fs::path&)> worth) {
        return {std::move(worth), [this](const fs::path& file) { files.push_back(file); }};
    }

    Paths files;
};

TEST(ReadAhead, AsksInTheOrderOfInodes) {
    const Paths files = realFiles(20);
    Asked asked;
    asked.readAhead(always).ask(listed(files), {});
    EXPECT_THAT(asked.files, ElementsAreArray(byInode(files)));
}

TEST(ReadAhead, AsksForNothingThatDoesNotPay) {
    Asked asked;
    asked.readAhead([](const fs::path&) { return WorthAsking::nothing; }).ask(listed(realFiles(20)), {});
    EXPECT_THAT(asked.files, IsEmpty());
}

TEST(ReadAhead, AsksForAllWhereItPaysForTheFirstOrTheLast) {
    const Paths files = realFiles(5);
    for (const fs::path& paying : {files.front(), files.back()}) {
        Asked asked;
        const auto worth = [&](const fs::path& file) {
            return file == paying ? WorthAsking::content : WorthAsking::nothing;
        };
        asked.readAhead(worth).ask(listed(files), {});
        EXPECT_THAT(asked.files, ElementsAreArray(byInode(files)));
    }
}

TEST(ReadAhead, LooksUpNamesWhereThoseAreWhatCosts) {
    const Paths files = realFiles(5);
    lookedUp = 0;
    Asked asked;
    asked.readAhead([](const fs::path&) { return WorthAsking::names; }).ask(listed(files), {});
    EXPECT_THAT(asked.files, IsEmpty());
    EXPECT_EQ(lookedUp, 5);
}

TEST(ReadAhead, LeavesOutWhatHasGone) {
    Paths files = realFiles(3);
    fs::remove(files[1]);
    Asked asked;
    asked.readAhead(always).ask(listed(files), {});
    EXPECT_THAT(asked.files, ElementsAre(files[2], files[0]));
}

TEST(ReadAhead, EndsWhenItIsStopped) {
    std::stop_source stop;
    int asked = 0;
    const ReadAhead readAhead{always, [&](const fs::path&) {
                                  ++asked;
                                  stop.request_stop();
                              }};
    readAhead.ask(listed(realFiles(3)), stop.get_token());
    EXPECT_EQ(asked, 1);
}

/// A scan of many files whose workers and whose look ahead a test can hold.
class ReadAheadScan : public ScanModelTest {
protected:
    void scan(const ReadAhead& readAhead) {
        createModel(
            {[this](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(files); },
             [this](const fs::path& file, const std::stop_token& stop) { return held.measure(file, stop); },
             readAhead});
        model->ingest({"/music"});
    }

    /// Lets all files be measured, and expects that none is missing.
    void expectAllMeasured() {
        held.release(static_cast<int>(files.size()));
        awaitStatus("COMPLETE");
        EXPECT_EQ(model->summary().fileCount, static_cast<int>(files.size()));
    }

    const Paths files = realFiles(4 * MeasuringStage::window);
};

TEST_F(ReadAheadScan, GoesNoFurtherThanTwoWindowsBeforeTheWorkers) {
    std::atomic<std::size_t> asked = 0;
    const auto askFor = [&](const fs::path& file) {
        ++asked;
        const auto place = static_cast<std::size_t>(std::ranges::find(files, file) - files.begin());
        const std::size_t taken = held.started().size() + MeasuringStage::width;
        EXPECT_LT(place, taken + 2 * MeasuringStage::window) << "with " << taken << " taken";
    };
    scan({always, askFor});
    awaitThat([&] { return asked >= MeasuringStage::window; });
    expectAllMeasured();
    model.reset(); // waits for all threads
    EXPECT_LE(asked, files.size()) << "a file was asked for twice";
}

TEST_F(ReadAheadScan, StaysAWindowBeforeTheWorkers) {
    std::atomic<std::size_t> asked = 0;
    scan({always, [&](const fs::path&) { ++asked; }});
    awaitThat([&] { return asked > 0; });
    for (std::size_t taken = 0; taken < files.size(); ++taken) {
        held.awaitStarted(taken + 1);
        // The first few may be taken before it looks.
        const std::size_t due =
            std::min(taken + MeasuringStage::window, files.size()) - MeasuringStage::width;
        awaitThat([&] { return asked >= due; });
        held.release(1);
    }
    expectAllMeasured();
    model.reset(); // waits for all threads
}

TEST_F(ReadAheadScan, IsNotWaitedFor) {
    std::latch measured(1);
    scan({always, [&](const fs::path&) { measured.wait(); }});
    expectAllMeasured();
    measured.count_down();
    model.reset(); // waits for all threads
}

TEST_F(ReadAheadScan, MayFail) {
    scan({always, [](const fs::path&) { throw std::bad_alloc(); }});
    expectAllMeasured();
}

TEST_F(ReadAheadScan, EndsWithAScanThatIsCancelled) {
    std::atomic<int> asked = 0;
    std::latch cancelled(1);
    scan({always, [&](const fs::path&) {
              ++asked;
              cancelled.wait();
          }});
    awaitThat([&] { return asked == 1; });
    model->reset();
    cancelled.count_down();
    model.reset(); // waits for all threads
    EXPECT_EQ(asked, 1);
}

} // namespace

} // namespace velmora::test
