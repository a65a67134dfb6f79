// What a file may not do to the program: make it open a second file, take its name for an address, or keep it
// busy.

#include "measure/MediaDuration.h"
#include "system/Paths.h"
#include "tests/measure/HeaderBytes.h"
#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <future>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::test {

namespace {

using namespace std::string_literals;

/// Notes the name of every file opened in a folder, by whomever.
class OpenWatch {
public:
    explicit OpenWatch(const fs::path& folder)
        : m_notify(::inotify_init1(IN_NONBLOCK)) {
        EXPECT_GE(::inotify_add_watch(m_notify.get(), folder.c_str(), IN_OPEN), 0);
    }

    std::vector<std::string> opened() const {
        std::vector<std::string> names;
        alignas(inotify_event) std::array<char, 16'384> buffer{};
        const ssize_t got = ::read(m_notify.get(), buffer.data(), buffer.size());
        for (ssize_t at = 0; at < got;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            names.emplace_back(event->len == 0 ? "" : event->name);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return names;
    }

private:
    FileDescriptor m_notify;
};

/// `head`, and zeros up to `size`; the bytes that are read are added to `readBytes`.
ByteSource paddedSource(const std::string& head, std::int64_t size, std::int64_t& readBytes) {
    return {size, [&head, size, &readBytes](std::int64_t offset, std::span<std::uint8_t> buffer) {
                const auto count =
                    std::clamp<std::int64_t>(size - offset, 0, static_cast<std::int64_t>(buffer.size()));
                std::ranges::fill(buffer, std::uint8_t{0});
                for (std::size_t i = 0;
                     i < buffer.size() && offset + static_cast<std::int64_t>(i) < std::ssize(head); ++i) {
                    buffer[i] = static_cast<std::uint8_t>(head[static_cast<std::size_t>(offset) + i]);
                }
                readBytes += count;
                return std::optional(static_cast<std::size_t>(count));
            }};
}

} // namespace

struct TrapRow {
    std::string_view name;
    std::string_view content;
};

void PrintTo(const TrapRow& row, std::ostream* out) {
    *out << row.name;
}

class MediaTrap : public testing::TestWithParam<TrapRow> {};

TEST_P(MediaTrap, IsNoAudioAndOpensNothingBesideItself) {
    for (const char* const extension : {"mp3", "m4a", "wav", "aac"}) {
        const fs::path folder = freshFolder();
        writeWav(folder / "neighbour.wav");
        const fs::path script = write(folder / "track").replace_extension(extension);
        write(script, GetParam().content);
        const OpenWatch watch(folder);
        EXPECT_TRUE(is<NotAudio>(answerForFile(script))) << extension;
        EXPECT_EQ(watch.opened(), std::vector<std::string>{script.filename()}) << extension;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, MediaTrap,
    testing::Values(TrapRow{"ffconcat", "ffconcat version 1.0\nfile neighbour.wav\n"},
                    TrapRow{"hls", "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:3\n#EXTINF:3.0,\n"
                                   "neighbour.wav\n#EXT-X-ENDLIST\n"},
                    TrapRow{"sdp", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
                                   "m=audio 5004 RTP/AVP 0\n"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(MediaGuard, TakesNoNameForAnAddress) {
    const fs::path folder = freshFolder();
    for (const char* const name :
         {"http:x.wav", "concat:a.wav", "file:b.wav", "pipe:0.wav", "-.wav", "%d.wav"}) {
        const fs::path path = writeWav(folder / name);
        EXPECT_NEAR(secondsIn(answerForFile(path)), AudioShape{}.seconds(), 0.0005) << name;
    }
}

TEST(MediaGuard, EndsWhenStopped) {
    const fs::path path = encodeAudio(freshFolder() / "long.aac", {.frames = 882'000});
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(is<OverBudget>(answerForFile(path, stop.get_token())));
}

TEST(MediaGuard, SearchesNoFurtherThanItsBudgetInEmptyFiles) {
    const std::string mpeg = times(100, "\xFF\xFB\x90\x00"s + zeros(413));
    const std::string wav = "RIFF" + le(0, 4) + "WAVE" + riffChunk("fmt ", zeros(16));
    const double mpegSeconds = 100 * 1152 / 44'100.0;

    const struct {
        std::string_view name;
        std::string head;
        double seconds;
    } rows[] = {
        {"nothing", "", -1},
        {"chunks without end", wav, -1},
        {"iff", "FORM" + be(0, 4) + "AIFF", -1},
        {"avi", "RIFF" + le(0, 4) + "AVI ", -1},
        {"speech", "#!AMR\n" + times(10, be(0x7C, 1)), 0.2},
        {"mpeg audio", mpeg, mpegSeconds},
        {"matroska", "\x1A\x45\xDF\xA3", -1},
    };

    for (const auto& row : rows) {
        std::int64_t readBytes = 0;
        const MediaAnswer answer =
            mediaDuration(paddedSource(row.head, 4LL << 30, readBytes), "track.mp3", {}).answer;
        EXPECT_NEAR(secondsIn(answer), row.seconds, 1e-9) << row.name;
        EXPECT_LT(readBytes, 64 << 20) << row.name;
    }
}

TEST(MediaGuard, CountsAudioBeyondTheBudgetOfTheSearch) {
    const std::string frame = "\xFF\xFB\x90\x00"s + zeros(413);
    constexpr std::int64_t frames = 200'000; // 83 MB
    const ByteSource source{frames * 417, [&frame](std::int64_t offset, std::span<std::uint8_t> buffer) {
                                std::size_t filled = 0;
                                while (filled < buffer.size() && offset < frames * 417) {
                                    buffer[filled++] = static_cast<std::uint8_t>(
                                        frame[static_cast<std::size_t>(offset++ % 417)]);
                                }
                                return std::optional(filled);
                            }};
    EXPECT_NEAR(secondsIn(mediaDuration(source, "long.mp3", {}).answer), frames * 1152 / 44'100.0, 1e-6);
}

TEST(MediaGuard, ReadsLittleOfAFileThatStatesItsLength) {
    const AudioShape shape{.frames = 1'323'000};
    const fs::path folder = freshFolder();
    const std::string picture = "ID3\x04"s + zeros(3) + "\x10" + zeros(2) + zeros(16 << 14);
    const std::string faststart = R"(ffmpeg -v error -y -i "$IN" -c:a aac -movflags faststart "$OUT")";
    const std::pair<std::string_view, std::string> rows[] = {
        {"wav", read(encodeAudio(folder / "a.wav", shape))},
        {"aiff", read(encodeAudio(folder / "a.aiff", shape))},
        {"mp3 after a picture", picture + read(encodeAudio(folder / "a.mp3", shape))},
        {"flac", read(encodeAudio(folder / "a.flac", shape))},
        {"m4a", read(encodeAudio(folder / "a.m4a", faststart, shape))},
        {"mpc", read(encodeAudio(folder / "a.mpc", shape))},
        {"wv", read(encodeAudio(folder / "a.wv", shape))},
    };
    for (const auto& [name, bytes] : rows) {
        std::vector<Read> reads;
        const Bytes content(bytes.begin(), bytes.end());
        const MediaAnswer answer = mediaDuration(counted(content, reads), "track", {}).answer;
        EXPECT_NEAR(secondsIn(answer), shape.seconds(), 0.001) << name;
        EXPECT_LE(reads.size(), 3) << name;
        EXPECT_LE(bytesIn(reads), 128 << 10) << name;
    }
}

TEST(MediaGuard, BelievesNoLengthThatTheFileCannotHold) {
    const std::string oldApe = "MAC " + le(3970, 2) + le(2000, 2) + le(0, 2) + le(2, 2) + le(44'100, 4) +
                               zeros(8) + le(6'000'000, 4) + le(100, 4) + zeros(13'000);
    const std::string audible = be(60'000'000, 4) + "\x57\x90\x75\x36" + be(1, 4) + zeros(10'000);
    const auto wavPackBlock = [](const std::string& highBytes, std::uint32_t index) {
        return "wvpk" + le(200, 4) + le(0x410, 2) + highBytes + times(4, "\xFF") + le(index, 4) +
               le(22'050, 4) + le(9 << 23, 4) + zeros(4 + 176);
    };
    const std::string wavPack = wavPackBlock("\0\0"s, 0) + wavPackBlock("\x7F\0"s, 0xFFFF'FF00);
    for (const std::string& file : {oldApe, audible, wavPack}) {
        EXPECT_EQ(secondsOf(file), -1) << file.substr(0, 4);
    }
}

TEST(MediaGuard, CountsWhatAProbedFormatClaimsInVain) {
    const AudioShape shape{.frames = 2'205};
    const fs::path path = freshFolder() / "track.mp3";
    std::string file = read(encodeAudio(path, R"(ffmpeg -v error -y -i "$IN" -f ast "$OUT")", shape));
    constexpr std::size_t samplesAt = 20;
    file.replace(samplesAt, 4, be(0xFFFFFFFF, 4));
    EXPECT_NEAR(secondsOf(file), shape.seconds(), 0.001);
}

TEST(MediaGuard, GivesEveryThreadTheSameAnswer) {
    const fs::path folder = freshFolder();
    Paths files;
    for (const char* const extension : {"mp3", "flac", "m4a", "ogg", "mka", "wma", "tta", "aac", "ra"}) {
        files.push_back(encodeAudio(folder / ("track."s + extension)));
    }
    const auto measureAll = [&files] {
        std::vector<double> seconds;
        seconds.reserve(files.size());
        for (const fs::path& file : files) {
            seconds.push_back(secondsIn(answerForFile(file)));
        }
        return seconds;
    };
    const std::vector<double> expected = measureAll();
    EXPECT_EQ(std::ranges::count(expected, -1), 0);
    std::array<std::future<std::vector<double>>, 6> threads;
    for (auto& thread : threads) {
        thread = std::async(std::launch::async, measureAll);
    }
    for (auto& thread : threads) {
        EXPECT_EQ(thread.get(), expected);
    }
}

} // namespace velmora::test
