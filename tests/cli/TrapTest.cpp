// Files that ask for more than their own bytes: for a neighbour, or for the network. The kernel's account of
// a whole run, child processes included, shows that nobody gets it.

#include "tests/support/Files.h"
#include "tests/support/NamedRow.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velmora::test {
namespace {

using namespace std::string_literals;

using testing::AnyOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

const auto asksForMore = AnyOf(HasSubstr("neighbour"), HasSubstr("connect("), HasSubstr("socket(AF_INET"));

struct Trap : NamedRow {
    std::string (*content)();
    std::string_view victim = "ffprobe -v quiet"; ///< a program that does as the file asks
};

std::string concatScript() {
    return "ffconcat version 1.0\nfile neighbour.wav\n";
}

std::string playlist() {
    return "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:3\n#EXTINF:3.0,\nneighbour.wav\n#EXT-X-"
           "ENDLIST\n";
}

std::string sdp() {
    return "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio 5004 RTP/AVP 0\n";
}

std::string manifest() {
    return R"(<?xml version="1.0"?><MPD xmlns="urn:mpeg:dash:schema:mpd:2011" type="static" )"
           R"(mediaPresentationDuration="PT3S"><Period><AdaptationSet mimeType="audio/mp4">)"
           R"(<Representation id="1" bandwidth="1000"><BaseURL>neighbour.wav</BaseURL></Representation>)"
           R"(</AdaptationSet></Period></MPD>)";
}

/// `size` added to the four-byte size of the box `name` in `file`.
void grow(std::string& file, std::string_view name, std::size_t size) {
    const std::size_t at = file.find(name) - 4;
    for (std::size_t i = 4; i-- > 0; size >>= 8) {
        size += static_cast<std::uint8_t>(file[at + i]);
        file[at + i] = static_cast<char>(size & 0xFF);
    }
}

/// MP4 whose sound stands in another file, named by a Macintosh alias: 4 flags, 10 others, 28 volume's name,
/// 12 others, 64 file's name, 16 others, how many folders up (2) and down (2) it is, 16 others, then records
/// of kind (2), size (2), content, of which 2 is the path and -1 the end.
std::string movieWithoutItsSound() {
    std::string file = read(encodeAudio(freshFolder() / "track.m4a"));
    const std::string name = "/neighbour.wav";
    const std::string alias = "alis" + std::string(4 + 10 + 28 + 12 + 64 + 16, '\0') + "\0\1\0\1"s +
                              std::string(16, '\0') + "\0\2\0"s + static_cast<char>(name.size()) + name +
                              "\xFF\xFF\0\0"s;
    const std::size_t here = file.find("url ", file.find("dref")); // "in this file"
    file.replace(here, 8, alias);
    for (const char* const box : {"moov", "trak", "mdia", "minf", "dinf", "dref"}) {
        grow(file, box, alias.size() - 8);
    }
    grow(file, "alis", alias.size() - 8);
    return file;
}

class TrapRun : public testing::TestWithParam<Trap> {
protected:
    const fs::path folder = freshFolder();
    const fs::path neighbour = writeWav(folder / "neighbour.wav");
};

TEST_P(TrapRun, GetsNothingButItself) {
    for (const std::string name : {"track.mp3", "track.m4a", "track.wav", "track.ogg"}) {
        write(folder / name, GetParam().content());
        const std::string calls = systemCallsOf(shellWord(VELMORA_SCAN) + " --files " + name, folder);
        EXPECT_THAT(calls, ContainsRegex("openat[^\n]*" + name + "\", O_RDONLY")) << "the file itself";
        EXPECT_THAT(calls, Not(asksForMore)) << name;
    }
}

TEST_P(TrapRun, WouldCatchAnother) {
    write(folder / "track.m4a", GetParam().content());
    EXPECT_THAT(systemCallsOf(std::string(GetParam().victim) + " track.m4a", folder), asksForMore);
}

INSTANTIATE_TEST_SUITE_P(
    Traps, TrapRun,
    testing::Values(Trap{"Concat", &concatScript}, Trap{"Playlist", &playlist, "ffprobe -v quiet -f hls"},
                    Trap{"Sdp", &sdp, "timeout 2 ffprobe -v quiet -protocol_whitelist file,udp,rtp"},
                    Trap{"Manifest", &manifest, "ffprobe -v quiet -f dash -allowed_extensions ALL"},
                    Trap{"Movie", &movieWithoutItsSound, "ffprobe -v quiet -enable_drefs 1"}),
    &rowName<Trap>);

} // namespace
} // namespace velmora::test
