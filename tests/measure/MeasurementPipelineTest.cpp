#include "measure/MeasurementPipeline.h"

#include "system/RegularFile.h"
#include "tests/measure/HeaderBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace velmora::Collector {

namespace {

using test::Bytes;
using test::fs::path;

/// What the ended children of this process have cost; it changes whenever one has run.
long childrensCost() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_minflt + usage.ru_majflt;
}

/// Whether measuring `file` started a process.
bool startsAProcess(const path& file) {
    const long before = childrensCost();
    measure(file);
    return childrensCost() != before;
}

Bytes oggOfOneSecond() {
    return test::vorbisFile(test::OggPage{.granulePosition = 44'100, .packets = Bytes(100)}.bytes());
}

void bindSocket(const path& at) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(at.native().size(), sizeof address.sun_path);
    std::ranges::copy(at.native(), std::begin(address.sun_path));
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

} // namespace

TEST(Measure, GivesPathSecondsAndSizeOfWhatTheHeaderStates) {
    const path folder = test::freshFolder();
    const path ogg = test::write(folder / "a.OGG", oggOfOneSecond());
    EXPECT_EQ(measure(ogg),
              (Measured{ogg, 1.0, static_cast<std::int64_t>(oggOfOneSecond().size()), {}, 2, 44'100, "Ogg"}));
    const Bytes asf = test::asfHeader(test::AsfFileProperties{}.bytes());
    const path wma = test::write(folder / "b.wma", asf);
    EXPECT_EQ(measure(wma), (Measured{wma, 2.0, static_cast<std::int64_t>(asf.size()), {}, 0, 0, "ASF"}));
    EXPECT_FALSE(startsAProcess(ogg));
    EXPECT_FALSE(startsAProcess(wma));
}

TEST(Measure, TakesAHeadersValueHoweverSmallOrLarge) {
    const path folder = test::freshFolder();
    const Bytes brief = test::asfHeader(test::AsfFileProperties{.playDuration = 1, .preroll = 0}.bytes());
    EXPECT_EQ(measure(test::write(folder / "brief.wma", brief)).seconds, 1e-7);
    const Bytes endless =
        test::joined({test::OggPage{.packets = test::vorbisHeader(1)}.bytes(),
                      test::OggPage{.granulePosition = 1ULL << 63, .packets = Bytes(100)}.bytes()});
    EXPECT_EQ(measure(test::write(folder / "endless.ogg", endless)).seconds, 0x1p63);
}

TEST(Measure, TimesWhatNoHeaderReaderKnowsInProcess) {
    const path folder = test::freshFolder();
    const test::AudioShape shape{.frames = 132'300};
    for (const std::string name : {"a.wav", "b.flac", "c.aiff", "d.mp3"}) {
        const path file = test::encodeAudio(folder / name, shape);
        const long before = childrensCost();
        const Measured measured = measure(file);
        EXPECT_NEAR(measured.seconds, 3.0, 0.06) << name;
        EXPECT_EQ(measured.bytes, static_cast<std::int64_t>(test::fs::file_size(file))) << name;
        EXPECT_EQ(measured.url, file) << name;
        EXPECT_EQ(childrensCost(), before) << name;
    }
}

TEST(Measure, GoesOnWhenTheHeaderReaderFails) {
    const path folder = test::freshFolder();
    // A WAV under the names of the header readers' formats.
    for (const std::string name : {"a.ogg", "b.wma", "c.opus"}) {
        const path file = test::writeWav(folder / name, {.frames = 88'200});
        EXPECT_NEAR(measure(file).seconds, 2.0, 0.001) << name;
    }
    // An Ogg file cut below 65 bytes is nothing to anyone.
    Bytes cut = oggOfOneSecond();
    cut.resize(64);
    const path small = test::write(folder / "small.ogg", cut);
    EXPECT_EQ(measure(small), (Measured{small, -1.0, 64, Reason::notUnderstood, 0, 0, "Ogg"}));
    // A live stream's header states no play duration.
    const Bytes live = test::asfHeader(test::AsfFileProperties{.playDuration = 0}.bytes());
    EXPECT_EQ(measure(test::write(folder / "live.wma", live)).seconds, -1.0);
}

TEST(Measure, AsksFfprobeWhenNoMoreThanAMillisecondWasFound) {
    const path folder = test::freshFolder();
    const path one = test::writeWav(folder / "one.wav", {.frames = 8, .rate = 8'000, .channels = 1});
    const path two = test::writeWav(folder / "two.wav", {.frames = 16, .rate = 8'000, .channels = 1});
    EXPECT_EQ(measure(one).seconds, 0.001) << "which ffprobe may say, as it need only be positive";
    EXPECT_TRUE(startsAProcess(one));
    EXPECT_EQ(measure(two).seconds, 0.002);
    EXPECT_FALSE(startsAProcess(two));
}

TEST(Measure, GivesMinusOneForWhatNoWayCanTime) {
    const path folder = test::freshFolder();
    const path noise = test::write(folder / "noise.wav", Bytes(5'000, 0xA5));
    EXPECT_EQ(measure(noise), (Measured{noise, -1.0, 5'000, Reason::noFrames}));
    const path empty = test::write(folder / "empty.mp3");
    EXPECT_EQ(measure(empty), (Measured{empty, -1.0, 0, Reason::empty}));
}

TEST(Measure, LetsNoScriptMakeAToolOpenOtherFiles) {
    const path folder = test::freshFolder();
    test::writeWav(folder / "neighbour.wav", {.frames = 44'100});

    struct Row {
        std::string name;
        std::string content;
    };

    const std::array rows = {
        Row{"concat.mp3", "ffconcat version 1.0\nfile neighbour.wav\n"},
        Row{"playlist.mp3", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nneighbour.wav\n#EXT-X-ENDLIST\n"},
    };
    for (const Row& row : rows) {
        const path file = test::write(folder / row.name, row.content);
        EXPECT_FALSE(startsAProcess(file)) << row.name;
        EXPECT_EQ(measure(file),
                  (Measured{file, -1.0, static_cast<std::int64_t>(row.content.size()), Reason::notAudio}))
            << row.name;
    }
}

TEST(Measure, OpensOnlyRegularFiles) {
    const path folder = test::freshFolder();
    ASSERT_EQ(::mkfifo((folder / "fifo.wav").c_str(), 0600), 0);
    bindSocket(folder / "socket.wav");
    test::fs::create_directory(folder / "folder.wav");
    test::fs::create_symlink("nowhere.wav", folder / "dangling.wav");
    test::fs::create_symlink("loop.wav", folder / "loop.wav");
    test::fs::create_symlink("/dev/zero", folder / "device.wav");
    const std::map<std::string, Reason> reasons = {
        {"fifo.wav", Reason::notRegular},   {"socket.wav", Reason::notRegular},
        {"folder.wav", Reason::notRegular}, {"device.wav", Reason::notRegular},
        {"dangling.wav", Reason::gone},     {"loop.wav", Reason::gone},
        {"missing.wav", Reason::gone},
    };
    for (const auto& [name, why] : reasons) {
        const path file = folder / name;

        struct stat status {};

        const std::int64_t size = ::stat(file.c_str(), &status) == 0 ? status.st_size : 0;
        EXPECT_EQ(measure(file), (Measured{file, -1.0, size, why})) << name;
        EXPECT_FALSE(startsAProcess(file)) << name;
    }
}

TEST(Measure, FollowsALinkToAFile) {
    const path folder = test::freshFolder();
    const path target = test::write(folder / "target", oggOfOneSecond());
    test::fs::create_symlink("target", folder / "link.ogg");
    EXPECT_EQ(measure(folder / "link.ogg"), (Measured{folder / "link.ogg",
                                                      1.0,
                                                      static_cast<std::int64_t>(test::fs::file_size(target)),
                                                      {},
                                                      2,
                                                      44'100,
                                                      "Ogg"}));
}

TEST(Measure, KeepsTheSizeOfAFileItMayNotRead) {
    const path folder = test::freshFolder();
    const path file = test::write(folder / "secret.ogg", oggOfOneSecond());
    test::fs::permissions(file, test::fs::perms::none);
    // Root may read everything: root's child becomes nobody, who must reach the folder.
    const bool isRoot = ::geteuid() == 0;
    for (path open = folder; isRoot && open != test::fs::temp_directory_path().parent_path();
         open = open.parent_path()) {
        test::fs::permissions(open, test::fs::perms::group_exec | test::fs::perms::others_exec,
                              test::fs::perm_options::add);
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isOrdinary = !isRoot || ::setuid(65'534) == 0;
        const bool isUnreadable =
            measure(file) == Measured{file, -1.0, static_cast<std::int64_t>(oggOfOneSecond().size()),
                                      Reason::permissionDenied};
        ::_exit(isOrdinary && isUnreadable ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(Measure, SaysWhyAFileHasNoLength) {
    const path folder = test::freshFolder();
    const test::AudioShape shape{.frames = 44'100};
    const auto cutTo = [](const path& file, std::uintmax_t size) {
        test::fs::resize_file(file, size);
        return file;
    };

    struct Row {
        path file;
        Reason why;
    };

    const std::vector<Row> rows = {
        {test::writeWav(folder / "silent.wav", {.frames = 0}), Reason::noFrames},
        {test::write(folder / "text.mp3", "no audio at all"), Reason::noFrames},
        {test::write(folder / "page.mp3", "<svg xmlns='http://www.w3.org/2000/svg'/>"), Reason::noFrames},
        {test::write(folder / "list.mp3", "ffconcat version 1.0\nfile a.wav\n"), Reason::notAudio},
        {cutTo(test::encodeAudio(folder / "cut.flac", shape), 30), Reason::cutOff},
        {cutTo(test::encodeAudio(folder / "cut.wav", shape), 30), Reason::cutOff},
        {cutTo(test::encodeAudio(folder / "cut.aiff", shape), 60), Reason::cutOff},
        {cutTo(test::encodeAudio(folder / "cut.caf", shape), 30), Reason::cutOff},
        {cutTo(test::encodeAudio(folder / "cut.wv", shape), 30), Reason::cutOff},
        {cutTo(test::encodeAudio(folder / "cut.au", shape), 20), Reason::cutOff},
        {cutTo(test::encodeAudio(folder / "cut.m4a", shape), 30), Reason::cutOff},
        {test::write(folder / "damaged.ogg", "OggS" + std::string(5000, 'x')), Reason::notUnderstood},
        {test::write(folder / "zeros.wav", Bytes(9 << 20)), Reason::searchEnded},
    };
    for (const Row& row : rows) {
        const Measured measured = measure(row.file);
        ASSERT_TRUE(measured.why) << row.file;
        EXPECT_EQ(wordsFor(*measured.why), wordsFor(row.why)) << row.file;
    }
}

TEST(Measure, EndsWithMinusOneWhenAStopWasRequested) {
    std::stop_source stop;
    stop.request_stop();
    const path file = test::write(test::freshFolder() / "a.ogg", oggOfOneSecond());
    EXPECT_EQ(measure(file, stop.get_token()).seconds, -1.0);
    EXPECT_EQ(measure(file, stop.get_token()).why, Reason::stopped);
}

TEST(Measure, ClosesWhatItOpens) {
    const path folder = test::freshFolder();
    const std::array files = {
        test::write(folder / "a.ogg", oggOfOneSecond()), test::writeWav(folder / "b.wav"),
        test::write(folder / "c.wav", Bytes(5'000, 0xA5)), folder / "missing.wav", folder};
    const auto openDescriptors = [] { return test::namesIn("/proc/self/fd").size(); };
    measure(files[2]); // starts the helper, which stays
    const std::size_t before = openDescriptors();
    for (const path& file : files) {
        measure(file);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(Measure, GivesTheSameFromManyThreadsAtOnce) {
    const path folder = test::freshFolder();
    const std::vector<path> files = {test::write(folder / "a.ogg", oggOfOneSecond()),
                                     test::encodeAudio(folder / "b.wma"),
                                     test::encodeAudio(folder / "c.flac"),
                                     test::encodeAudio(folder / "d.mp3"),
                                     test::write(folder / "e.wav", Bytes(5'000, 0xA5)),
                                     folder / "missing.wav"};
    std::vector<Measured> alone;
    std::ranges::transform(files, std::back_inserter(alone), [](const path& file) { return measure(file); });
    std::array<std::vector<Measured>, 6> together;
    std::vector<std::jthread> threads;
    threads.reserve(together.size());
    for (std::vector<Measured>& results : together) {
        threads.emplace_back([&] {
            std::ranges::transform(files, std::back_inserter(results),
                                   [](const path& file) { return measure(file); });
        });
    }
    threads.clear();
    for (const std::vector<Measured>& results : together) {
        EXPECT_EQ(results, alone);
    }
}

} // namespace velmora::Collector
