// Every format a real encoder exists for, against the length of what was encoded.

#include "tests/measure/MediaBytes.h"
#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {

/// The default encoder for the extension, and by how many seconds its output may play longer.
struct EncodedRow {
    std::string extension;
    double longer = 0;
};

void PrintTo(const EncodedRow& row, std::ostream* out) {
    *out << row.extension;
}

class EncodedMedia : public testing::TestWithParam<EncodedRow> {};

TEST_P(EncodedMedia, HasTheLengthOfItsSource) {
    const EncodedRow& row = GetParam();
    const AudioShape shape;
    const fs::path path = encodeAudio(freshFolder() / ("track." + row.extension), shape);
    const double seconds = secondsIn(answerForFile(path));
    EXPECT_GE(seconds, shape.seconds() - 0.001);
    EXPECT_LE(seconds, shape.seconds() + row.longer + 0.001);
}

INSTANTIATE_TEST_SUITE_P(
    ByExtension, EncodedMedia,
    testing::Values(EncodedRow{"wav"}, EncodedRow{"wave"}, EncodedRow{"bwf"}, EncodedRow{"rf64"},
                    EncodedRow{"w64"}, EncodedRow{"aif"}, EncodedRow{"aiff"}, EncodedRow{"aifc"},
                    EncodedRow{"au"}, EncodedRow{"snd"}, EncodedRow{"caf"}, EncodedRow{"voc"},
                    EncodedRow{"flac"}, EncodedRow{"alac"}, EncodedRow{"wv"}, EncodedRow{"tta"},
                    EncodedRow{"m4a"}, EncodedRow{"m4b"}, EncodedRow{"m4r"}, EncodedRow{"mp4"},
                    EncodedRow{"3ga"}, EncodedRow{"mka"}, EncodedRow{"ogg"}, EncodedRow{"oga"},
                    EncodedRow{"ogx"}, EncodedRow{"opus", 0.007}, EncodedRow{"spx", 0.008},
                    EncodedRow{"ra", 0.005}, EncodedRow{"wma", 0.047}, EncodedRow{"mp3"},
                    EncodedRow{"mp2", 0.006}, EncodedRow{"aac", 0.047}, EncodedRow{"adts", 0.047},
                    EncodedRow{"amr", 0.02}, EncodedRow{"mpc"}, EncodedRow{"sd2"}),
    [](const auto& row) { return row.param.extension; });

} // namespace velmora::test
