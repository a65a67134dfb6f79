#include "tests/staged/SampleDetails.h"

#include "records/Summary.h"

#include <cerrno>
#include <string>
#include <utility>

namespace velmora::test {

SampleDetails sampleOf(ScanDetails details, const PathList& dropped) {
    ScanSummary summary = summarize(details.files);
    summary.unreadable += static_cast<int>(details.skippedArchives.size());
    summary.dropped = dropped;
    return {std::make_shared<const ScanDetails>(std::move(details)), std::move(summary)};
}

SampleDetails sampleDetails() {
    const std::string music = "/home/ann/Field Recordings";
    ScanDetails details;
    const auto add = [&](const std::string& path, double seconds, std::int64_t bytes) {
        details.files.push_back({music + "/" + path, seconds, bytes});
    };
    for (int i = 1; i <= 24; ++i) {
        const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
        add("Harbour/" + number + " Cranes and gulls.flac", 212.0 + 17 * i, 21'400'000 + 930'000 * i);
    }
    add("Interview with the keeper of the lighthouse at the end of the world, first part.mp3", 5832.4,
        93'300'000);
    add("Market/春の歌.opus", 187, 2'900'000);
    add("Market/Песня.ogg", 240, 3'800'000);
    add("Market/caf\xE9.wav", 61, 10'800'000);
    details.files.push_back({music + "/Market/broken.m4a", unmeasured, 1'048'576, Reason::cutOff});
    details.files.push_back({"/tmp/x/Disc 1/01 Opening.wav", 423.5, 74'700'000});
    details.files.push_back({"/tmp/x/Disc 1/02 Silence.wav", unmeasured, 44, Reason::noFrames});
    details.archiveOf = {{"/tmp/x", music + "/Live set.zip"}};
    details.skippedArchives = {{music + "/Secret.7z", Reason::encrypted},
                               {music + "/set.zip", Reason::damaged}};
    details.unreadableFolders = {{music + "/private", EACCES}};
    return sampleOf(std::move(details), {music});
}

} // namespace velmora::test
