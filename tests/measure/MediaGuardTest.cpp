// What a file may not do to the program: make it open a second file, take its name for an address, or keep it
// busy.

#include "measure/MediaDuration.h"
#include "support/Files.h"
#include "support/RealAudio.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

namespace {

MediaAnswer measured(const fs::path& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    EXPECT_TRUE(file) << path;
    return file ? mediaDuration(*file, path, {}) : MediaAnswer{};
}

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

struct TrapRow {
    std::string_view name;
    std::string_view content;
};

class MediaTrap : public testing::TestWithParam<TrapRow> {};

} // namespace

TEST_P(MediaTrap, IsForeignAndOpensNothingBesideItself) {
    for (const char* const extension : {"mp3", "m4a", "wav", "aac"}) {
        const fs::path folder = freshFolder();
        writeWav(folder / "neighbour.wav");
        const fs::path script = write(folder / "track").replace_extension(extension);
        write(script, GetParam().content);
        const OpenWatch watch(folder);
        const MediaAnswer answer = measured(script);
        EXPECT_FALSE(answer.seconds) << extension;
        EXPECT_TRUE(answer.isForeign) << extension;
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
        EXPECT_NEAR(measured(path).seconds.value_or(-1), AudioShape{}.seconds(), 0.0005) << name;
    }
}

TEST(MediaGuard, EndsWhenStopped) {
    const fs::path path = encodeAudio(freshFolder() / "long.aac", {.frames = 44'100 * 20});
    const std::optional<RegularFile> file = RegularFile::open(path);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(mediaDuration(*file, path, stop.get_token()).seconds);
}

} // namespace velmora::test
