// Files of gigabytes: what is nothing but size must not keep the program busy, what is a long recording is
// timed.

#include "tests/cli/ScanProcess.h"
#include "tests/support/NamedRow.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

namespace velmora::test {
namespace {

using namespace std::string_literals;

constexpr std::uintmax_t gigabyte = 1'000'000'000;

/// PCM at 8 kHz, 16 bits, mono: 16,000 bytes a second.
const std::string waveFormat = "fmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x80\x3E\0\0\2\0\x10\0"s;
const std::string silentFrame = "\xFF\xFB\x90\0"s + std::string(413, '\0'); // MPEG, 26 ms

std::string repeated(int count, const std::string& part) {
    std::string result;
    while (count-- > 0) {
        result += part;
    }
    return result;
}

/// About twice what the search for frames may read before it gives a file up.
constexpr std::int64_t maxBytesRead = std::int64_t{16} << 20;

struct HugeFile : NamedRow {
    std::string_view file;
    std::string head; ///< zeros follow
    std::uintmax_t bytes;
    std::string_view shown; ///< seconds
};

/// How many bytes velmora-scan and its tools read from `file`.
std::int64_t bytesReadOf(const fs::path& file) {
    const fs::path trace = freshFolder() / "trace";
    // A program under observation cannot look for its leaks.
    tryShell("ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 strace -f -qq -e "
             "trace=read,pread64,readv,preadv,mmap -P " +
             shellWord(file.native()) + " -o " + shellWord(trace.native()) + " " + shellWord(VELMORA_SCAN) +
             " " + shellWord(file.native()) + " >/dev/null 2>&1");
    std::istringstream lines(read(trace));
    std::int64_t sum = 0;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_FALSE(line.find("mmap") != std::string::npos) << "what is read from a map is not counted";
        const std::size_t result = line.rfind("= ");
        if (result != std::string::npos) {
            sum += std::max<std::int64_t>(std::atoll(line.c_str() + result + 2), 0);
        }
    }
    return sum;
}

class Huge : public testing::TestWithParam<HugeFile> {
protected:
    void SetUp() override {
        write(file, GetParam().head);
        fs::resize_file(file, GetParam().bytes);
    }

    const fs::path file = freshFolder() / GetParam().file;
};

TEST_P(Huge, IsAnswered) {
    const Finished run = runToEnd({.arguments = {"--files", file}});
    EXPECT_EQ(run.output, std::string(GetParam().shown) + "\t" + file.native() + "\n");
}

TEST_P(Huge, IsReadInSmallPart) {
    const std::int64_t bytes = bytesReadOf(file);
    EXPECT_GT(bytes, 0);
    EXPECT_LT(bytes, maxBytesRead);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Huge,
    testing::Values(
        HugeFile{"NothingInMp3", "nothing.mp3", "", 4 * gigabyte, "-"},
        HugeFile{"NothingInWav", "nothing.wav", "", 4 * gigabyte, "-"},
        HugeFile{"NothingInM4a", "nothing.m4a", "", 4 * gigabyte, "-"},
        HugeFile{"NothingInFlac", "nothing.flac", "", 4 * gigabyte, "-"},
        HugeFile{"ChunksInWav", "chunks.wav", "RIFF\0\0\0\0WAVE"s + waveFormat, 3 * gigabyte, "-"},
        HugeFile{"ChunksInAiff", "chunks.aiff", "FORM\0\0\0\0AIFF"s, 3 * gigabyte, "-"},
        HugeFile{"ChunksInDff", "chunks.dff", "FRM8\0\0\0\0\0\0\0\0DSD "s, 3 * gigabyte, "-"},
        HugeFile{"FramesInMp3", "frames.mp3", repeated(100, silentFrame), 2 * gigabyte, "2.612"},
        HugeFile{"DataInWav", "data.wav", "RIFF\0\0\0\0WAVE"s + waveFormat + "data\x80\x3E\0\0"s,
                 3 * gigabyte, "1.000"},
        HugeFile{"RecordingInWav", "recording.wav",
                 "RF64\xFF\xFF\xFF\xFFWAVEds64\x1C\0\0\0"s + std::string(8, '\0') +   // sizes: of all,
                     "\0\xE4\x0B\x54\2\0\0\0"s + std::string(12, '\0') + waveFormat + // of the samples
                     "data\xFF\xFF\xFF\xFF"s,
                 10 * gigabyte + 80, "625000.000"}),
    &rowName<HugeFile>);

} // namespace
} // namespace velmora::test
