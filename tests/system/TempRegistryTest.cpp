#include "system/TempRegistry.h"

#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <set>
#include <thread>

namespace velmora {

namespace {

using test::freshFolder;
using test::write;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
namespace fs = std::filesystem;

/// A new directory of the kind that an extraction leaves, with a file in it.
fs::path extractionDirectory() {
    fs::path directory = TempRegistry::freshPath("");
    write(directory / "a.wav");
    return directory;
}

TEST(TempRegistry, MakesPathsThatNothingHas) {
    std::set<fs::path> paths;
    for (int i = 0; i < 100; ++i) {
        const fs::path path = TempRegistry::freshPath("zip-");
        EXPECT_EQ(path.parent_path(), fs::temp_directory_path());
        EXPECT_THAT(path.filename().native(),
                    MatchesRegex("velmora-zip-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
        EXPECT_FALSE(fs::exists(path));
        paths.insert(path);
    }
    EXPECT_EQ(paths.size(), 100U);
    EXPECT_TRUE(TempRegistry::freshPath("").filename().native().starts_with("velmora-"));
}

/// In processes of their own: what the variable says must not reach a test that sweeps.
TEST(TempRegistry, MakesAbsolutePathsInTheDirectoryThatTheEnvironmentNames) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "temporary");
    const auto parentWhen = [&](const char* tmpdir, const fs::path& expected) {
        test::inProcess([&] {
            fs::current_path(folder);
            ASSERT_EQ(tmpdir != nullptr ? ::setenv("TMPDIR", tmpdir, 1) : ::unsetenv("TMPDIR"), 0);
            EXPECT_EQ(TempRegistry::freshPath("").parent_path(), expected);
        });
    };
    parentWhen("temporary", folder / "temporary");
    parentWhen((folder / "missing").c_str(), folder / "missing");
    parentWhen("", "/tmp");
    parentWhen(nullptr, "/tmp");
}

TEST(TempRegistry, ReleasesWhatWasAdded) {
    const fs::path first = extractionDirectory();
    const fs::path second = extractionDirectory();
    const fs::path other = extractionDirectory();
    TempRegistry::add({first});
    TempRegistry::add({second});
    EXPECT_TRUE(fs::exists(first));
    TempRegistry::releaseAll();
    EXPECT_FALSE(fs::exists(first));
    EXPECT_FALSE(fs::exists(second));
    EXPECT_TRUE(fs::exists(other));
}

TEST(TempRegistry, ForgetsWhatItReleased) {
    const fs::path directory = extractionDirectory();
    TempRegistry::add({directory});
    TempRegistry::releaseAll();
    write(directory / "again.wav");
    TempRegistry::releaseAll();
    EXPECT_TRUE(fs::exists(directory));
}

TEST(TempRegistry, DeletesWhatWasReleasedWhenItIsAskedTo) {
    const fs::path first = extractionDirectory();
    const fs::path second = extractionDirectory();
    EXPECT_FALSE(TempRegistry::release());
    TempRegistry::add({first});
    const std::function<void()> deleteAll = TempRegistry::release();
    TempRegistry::add({second});
    EXPECT_TRUE(fs::exists(first));
    bool wasThere = true;
    std::thread waiting([&] {
        TempRegistry::awaitDeletions();
        wasThere = fs::exists(first);
    });
    deleteAll();
    waiting.join();
    EXPECT_FALSE(wasThere);
    EXPECT_TRUE(fs::exists(second));
    TempRegistry::releaseAll();
    EXPECT_FALSE(fs::exists(second));
    TempRegistry::awaitDeletions(); // of nothing
}

TEST(TempRegistry, ReleasingNothingHasNoEffect) {
    const fs::path directory = extractionDirectory();
    TempRegistry::releaseAll();
    TempRegistry::add({});
    TempRegistry::releaseAll();
    EXPECT_THAT(test::temporaryItems(), ElementsAre(directory.filename().native()));
}

TEST(TempRegistry, GoesOnWhenADirectoryIsGone) {
    const fs::path first = extractionDirectory();
    const fs::path second = extractionDirectory();
    TempRegistry::add({first, first, second});
    fs::remove_all(first);
    TempRegistry::releaseAll();
    EXPECT_FALSE(fs::exists(second));
}

TEST(TempRegistry, SweepsEverythingWithItsPrefix) {
    const fs::path temporary = fs::temp_directory_path();
    write(temporary / "velmora-1234" / "a.wav");
    write(temporary / "velmora-src-x-y.zip");
    write(temporary / "velmora-zip-1" / "b" / "c.wav");
    write(temporary / "velmora-");
    write(temporary / "Velmora-1234" / "a.wav");
    write(temporary / "other-velmora-1");
    write(temporary / ".velmora-1");
    const fs::path outside = write(freshFolder() / "outside" / "a.wav");
    fs::create_directory_symlink(outside.parent_path(), temporary / "velmora-link");

    TempRegistry::sweepStale();

    EXPECT_THAT(test::temporaryItems(), IsEmpty());
    EXPECT_THAT(test::namesIn(temporary),
                ElementsAre(".velmora-1", "Velmora-1234", "folders", "other-velmora-1"));
    EXPECT_TRUE(fs::exists(outside));
}

TEST(TempRegistry, SweepsNothingWhereTheTemporaryDirectoryCannotBeRead) {
    test::inProcess([] {
        ::setenv("TMPDIR", "/proc/self/task", 1);
        TempRegistry::sweepStale();
        EXPECT_TRUE(fs::exists("/proc/self/task"));
    });
}

TEST(TempRegistry, IsNotLockedWhileItDeletes) {
    constexpr int files = 1000;
    constexpr int maxTries = 200;
    bool addedMeanwhile = false;
    for (int i = 0; i < maxTries && !addedMeanwhile; ++i) {
        const fs::path large = TempRegistry::freshPath("");
        for (int file = 0; file < files; ++file) {
            write(large / std::to_string(file));
        }
        const fs::path added = extractionDirectory();
        const auto remaining = [&] {
            std::error_code error;
            return std::distance(fs::directory_iterator(large, error), fs::directory_iterator());
        };
        TempRegistry::add({large});
        std::thread releasing(&TempRegistry::releaseAll);
        while (remaining() == files) {
            std::this_thread::yield();
        }
        TempRegistry::add({added});
        addedMeanwhile = remaining() > 0; // never, if adding waited until everything was deleted
        releasing.join();
        TempRegistry::releaseAll();
    }
    EXPECT_TRUE(addedMeanwhile);
}

TEST(TempRegistry, TakesDirectoriesFromManyThreads) {
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([] {
            for (int j = 0; j < 20; ++j) {
                TempRegistry::add({extractionDirectory()});
                if (j % 5 == 0) {
                    TempRegistry::releaseAll();
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    TempRegistry::releaseAll();
    EXPECT_THAT(test::temporaryItems(), IsEmpty());
}

} // namespace

} // namespace velmora
