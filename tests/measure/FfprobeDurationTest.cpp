#include "measure/FfprobeDuration.h"

#include "tests/measure/HelperProcesses.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// A program of the test's own in ffprobe's place, which runs `commands` in the shell.
fs::path tool(std::string_view commands) {
    fs::path path =
        test::write(test::freshFolder() / "ffprobe", "#!/bin/sh\n" + std::string(commands) + "\n");
    fs::permissions(path, fs::perms::owner_all);
    return path;
}

double answerOf(std::string_view commands) {
    return ffprobeSeconds(tool(commands), "/music/a.wav", {});
}

} // namespace

TEST(FfprobeAnswer, IsADecimalNumberWithNothingButWhiteSpaceAroundIt) {
    struct Row {
        std::string_view answer;
        double seconds;
    };

    const auto rows = std::to_array<Row>({
        {"12.5\n", 12.5},
        {"12.5", 12.5},
        {"\r\n \t\v\f12.5 \n\n", 12.5},
        {"\u00A0\u2003\u202812.5\u3000\u0085", 12.5},
        {"3", 3},
        {"+3.25\n", 3.25},
        {".5\n", 0.5},
        {"5.\n", 5},
        {"007.50\n", 7.5},
        {"1e3\n", 1000},
        {"2.5E-1\n", 0.25},
        {"0.000001\n", 0.000001},
        {"4.9e-324\n", 4.9e-324},
        {"1.7976931348623157e308\n", 1.7976931348623157e308},
        {"9007199254740993.000000\n", 9007199254740992.0},
        {"123456789012345678901234567890.000000\n", 123456789012345678901234567890.0},
    });
    for (const Row& row : rows) {
        EXPECT_EQ(secondsInAnswer(row.answer), row.seconds) << row.answer;
    }
}

TEST(FfprobeAnswer, IsMinusOneForAnythingElse) {
    using namespace std::string_view_literals;
    const auto answers = std::to_array<std::string_view>({
        "N/A\n",
        "",
        "\n",
        " ",
        "0.000000\n",
        "0",
        "-0.0",
        "-12.5\n",
        "+-12.5",
        "++3",
        "+",
        "-",
        ".",
        "12.5 s",
        "12,5",
        "12.5\n3",
        "1 2",
        "12.5x",
        "1e",
        "e5",
        "0x10",
        "nan",
        "inf",
        "+inf",
        "-inf",
        "infinity",
        "1e999",
        "1e-999",
        "\uFEFF5",
        "5\0"sv,
        "\0005"sv,
        "12.5\xFF",
        "\xC3(5",
        "\xA0"
        "5",
        "5\xC2",
        "\xED\xA0\x80",
        "00:00:12.50",
    });
    for (const std::string_view answer : answers) {
        EXPECT_EQ(secondsInAnswer(answer), -1.0) << answer;
    }
}

TEST(FfprobePath, IsLookedForAtThreePlacesInOrder) {
    const std::array<std::string_view, 3> places = {"/usr/local/bin/ffprobe", "/opt/homebrew/bin/ffprobe",
                                                    "/usr/bin/ffprobe"};
    EXPECT_EQ(ffprobePlaces, places);
}

TEST(FfprobePath, IsTheFirstPlaceWithAnExecutableFile) {
    const fs::path folder = test::freshFolder();
    const std::string missing = folder / "missing";
    const std::string plain = test::write(folder / "plain", "#!/bin/sh\n");
    fs::permissions(plain, fs::perms::owner_read | fs::perms::owner_write);
    const std::string directory = folder;
    const std::string first = tool("exit 1");
    const std::string second = tool("exit 2");
    const auto found = [](const std::vector<std::string_view>& places) { return firstExecutable(places); };
    EXPECT_EQ(found({first, second}), first);
    EXPECT_EQ(found({missing, second, first}), second);
    EXPECT_EQ(found({missing, plain, directory, first}), first);
    EXPECT_EQ(found({missing, plain, directory}), std::nullopt);
    EXPECT_EQ(found({}), std::nullopt);
}

TEST(FfprobePath, IsFoundOnceAndKept) {
    EXPECT_EQ(ffprobePath(), firstExecutable(ffprobePlaces));
    EXPECT_EQ(&ffprobePath(), &ffprobePath());
}

TEST(Ffprobe, TimesRealFiles) {
    ASSERT_TRUE(ffprobePath());
    const test::AudioShape shape{.frames = 22'050};
    for (const std::string name : {"a.wav", "b.flac", "c.mka"}) {
        const fs::path file = test::encodeAudio(test::freshFolder() / name, shape);
        EXPECT_NEAR(ffprobeSeconds(file), 0.5, 0.01) << name;
    }
}

TEST(Ffprobe, TimesFilesOfAnyName) {
    const fs::path source = test::writeWav(test::freshFolder() / "a.wav", {.frames = 44'100});
    for (const std::string name : {"-v", "with space.wav", "new\nline.wav", "100%d.wav", "http:x.wav",
                                   "\xFF\xFE.wav", "'quoted' \"twice\".wav", "back\\slash", "ünïcödé"}) {
        const fs::path file = source.parent_path() / name;
        fs::copy_file(source, file);
        EXPECT_EQ(ffprobeSeconds(file), 1.0) << name;
    }
}

TEST(Ffprobe, GivesMinusOneForWhatItCannotTime) {
    const fs::path folder = test::freshFolder();
    EXPECT_EQ(ffprobeSeconds(folder / "missing.wav"), -1.0);
    EXPECT_EQ(ffprobeSeconds(test::write(folder / "empty.wav")), -1.0);
    EXPECT_EQ(ffprobeSeconds(test::write(folder / "text.wav", "There is no sound in these words.\n")), -1.0);
}

TEST(Ffprobe, IsGivenExactlySevenArguments) {
    const std::string arguments = "-v|quiet|-show_entries|format=duration|-of|"
                                  "default=noprint_wrappers=1:nokey=1|/music/a file.wav|";
    EXPECT_EQ(ffprobeSeconds(
                  tool("[ \"$(printf '%s|' \"$@\")\" = " + test::shellWord(arguments) + " ] && echo 12.5"),
                  "/music/a file.wav", {}),
              12.5);
}

TEST(Ffprobe, IsBelievedForItsOutputAlone) {
    EXPECT_EQ(answerOf("echo 12.5"), 12.5);
    EXPECT_EQ(answerOf("echo 12.5; exit 1"), 12.5);
    EXPECT_EQ(answerOf("echo 12.5; kill -SEGV $$"), 12.5);
    EXPECT_EQ(answerOf("kill -SEGV $$"), -1.0);
    EXPECT_EQ(answerOf("echo 99 >&2; echo 12.5"), 12.5);
    EXPECT_EQ(answerOf("echo 0.0001"), 0.0001);
    EXPECT_EQ(answerOf("echo N/A"), -1.0);
    EXPECT_EQ(answerOf("echo 0.000000"), -1.0);
    EXPECT_EQ(answerOf("echo 99 >&2"), -1.0);
    EXPECT_EQ(answerOf("exit 0"), -1.0);
}

TEST(Ffprobe, AnswersInLessThan4KiB) {
    EXPECT_EQ(answerOf("yes '' | head -c 4000; echo 12.5"), 12.5);
    EXPECT_EQ(answerOf("echo 12.5; yes '' | head -c 4091"), -1.0);
    EXPECT_EQ(answerOf("echo 12.5; yes ''"), -1.0); // ends, because it can write no more
}

TEST(Ffprobe, OpensNoSecondFile) {
    const fs::path folder = test::freshFolder();
    const fs::path second = test::writeWav(folder / "second.wav", {.frames = 44'100});
    const fs::path list =
        test::write(folder / "list.wav", "ffconcat version 1.0\nfile " + second.native() + "\n");
    const fs::path playlist =
        test::write(folder / "playlist.wav", "#EXTM3U\n#EXT-X-TARGETDURATION:999\n#EXTINF:999,\nsecond.wav\n"
                                             "#EXT-X-ENDLIST\n");
    EXPECT_EQ(ffprobeSeconds(list), -1.0);
    EXPECT_EQ(ffprobeSeconds(playlist), -1.0);
    EXPECT_EQ(ffprobeSeconds(second), 1.0);
    EXPECT_EQ(ffprobeSeconds(tool("cat " + test::shellWord(second.native()) + " > /dev/null && echo 12.5"),
                             list, {}),
              -1.0);
    EXPECT_EQ(ffprobeSeconds(tool("cat " + test::shellWord(second.native()) + " > /dev/null && echo 12.5"),
                             second, {}),
              12.5);
}

TEST(Ffprobe, GivesMinusOneWhenItCannotBeStarted) {
    const fs::path folder = test::freshFolder();
    EXPECT_EQ(ffprobeSeconds(std::nullopt, "/music/a.wav", {}), -1.0);
    EXPECT_EQ(ffprobeSeconds(folder / "missing", "/music/a.wav", {}), -1.0);
    EXPECT_EQ(ffprobeSeconds(folder, "/music/a.wav", {}), -1.0);
    const fs::path noProgram = test::write(folder / "broken", "\x7F"
                                                              "ELF, but no more of it");
    fs::permissions(noProgram, fs::perms::owner_all);
    EXPECT_EQ(ffprobeSeconds(noProgram, "/music/a.wav", {}), -1.0);
}

TEST(Ffprobe, HasThirtySeconds) {
    const fs::path file = test::freshFolder() / "a.wav";
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    std::stop_source stop;
    std::jthread asking([&] { EXPECT_EQ(ffprobeSeconds(file, stop.get_token()), -1.0); });
    const std::ofstream writer(file); // opens when ffprobe has opened it, and gives it nothing
    const std::vector<pid_t> processes = test::processesBelow(::getpid(), "ffprobe");
    ASSERT_EQ(processes.size(), 1);
    const std::string limits = test::read("/proc/" + std::to_string(processes.front()) + "/limits");
    EXPECT_THAT(limits, testing::ContainsRegex("Max cpu time +30 +30 +seconds"));
    stop.request_stop();
}

TEST(Ffprobe, IsKilledAtTheDeadline) {
    EXPECT_EQ(ffprobeSeconds(tool("exec sleep 600"), "/music/a.wav", {{}, std::chrono::milliseconds(50)}),
              -1.0);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
    EXPECT_EQ(errno, ECHILD);
}

TEST(Ffprobe, IsKilledWhenAStopIsRequested) {
    const fs::path file = test::freshFolder() / "a.wav"; // all that the tool may open
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    std::stop_source stop;
    std::jthread stopper([&] {
        std::ofstream(file).put('x'); // when the tool has begun to read
        stop.request_stop();
    });
    const fs::path sleeper = tool("for last; do :; done; read x < \"$last\"; exec sleep 600");
    EXPECT_EQ(ffprobeSeconds(sleeper, file, {stop.get_token(), {}}), -1.0);
}

TEST(Ffprobe, IsNotStartedAfterAStopWasRequested) {
    const fs::path marker = test::freshFolder() / "marker";
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(ffprobeSeconds(tool("echo 1 > " + test::shellWord(marker.native()) + "; echo 12.5"),
                             "/music/a.wav", {stop.get_token(), {}}),
              -1.0);
    EXPECT_FALSE(fs::exists(marker));
}

TEST(Ffprobe, AnswersManyThreadsAtOnce) {
    const fs::path echo = tool("for last; do :; done; echo \"${last#/music/}\"");
    std::array<double, 12> seconds{};
    std::vector<std::jthread> threads;
    threads.reserve(seconds.size());
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        threads.emplace_back(
            [&, i] { seconds[i] = ffprobeSeconds(echo, "/music/" + std::to_string(i + 1), {}); });
    }
    threads.clear();
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        EXPECT_EQ(seconds[i], static_cast<double>(i + 1));
    }
}

} // namespace velmora::Collector
