#include "tests/cli/ReportText.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

const std::string header = "path,seconds,length,bytes,format,sample_rate,channels\r\n";

std::string rowOf(const Measured& file, double speed = 1) {
    ScanDetails details;
    details.files = {file};
    const std::string table = csvReport(details, speed);
    EXPECT_EQ(table.substr(0, header.size()), header);
    return table.substr(header.size());
}

TEST(CsvReport, WritesARowAFile) {
    ScanDetails details;
    details.files = {{"/m/b.flac", 3725.4567, 30, {}, 2, 44'100, "FLAC"},
                     {"/m/a.mp3", 0.5, 10, {}, 1, 22'050, "MP3"}};
    EXPECT_EQ(csvReport(details, 1), header + "\"/m/b.flac\",3725.457,\"01:02:05\",30,\"FLAC\",44100,2\r\n" +
                                         "\"/m/a.mp3\",0.500,\"00:00:01\",10,\"MP3\",22050,1\r\n");
    EXPECT_EQ(csvReport({}, 1), header);
}

TEST(CsvReport, LeavesEmptyWhatIsNotKnown) {
    EXPECT_EQ(rowOf({"/a.wma", 1, 2, {}, 0, 0, "ASF"}), "\"/a.wma\",1.000,\"00:00:01\",2,\"ASF\",,\r\n");
    EXPECT_EQ(rowOf({"/a.wav", -1.0, 0, Reason::empty}), "\"/a.wav\",,,0,,,\r\n");
}

TEST(CsvReport, KeepsACellWholeWhateverAPathHolds) {
    EXPECT_EQ(rowOf({"/a \"b\", c\r\nd\xFF\t.wav", 1, 2}),
              "\"/a \"\"b\"\", c\r\nd\xFF\t.wav\",1.000,\"00:00:01\",2,,,\r\n");
}

TEST(CsvReport, HasNoCellThatASpreadsheetComputes) {
    for (const char* const name : {"=1+1", "+1", "-1", "@SUM(A1)", "\t=1", "\r=1"}) {
        ScanDetails details;
        details.archiveOf = {{"/tmp/v-1", "/m/=1.zip"}};
        details.files = {{std::filesystem::path("/tmp/v-1") / name, 1, 2}};
        const std::string row = csvReport(details, 1).substr(header.size());
        EXPECT_EQ(row.substr(0, 12), "\"/m/=1.zip/" + std::string(name, 1))
            << "as every path, from the root on";
    }
}

TEST(CsvReport, DividesTheLengths) {
    EXPECT_EQ(rowOf({"/a.wav", 3600, 2}, 1.5), "\"/a.wav\",2400.000,\"00:40:00\",2,,,\r\n");
    EXPECT_EQ(rowOf({"/a.ogg", 0x1p80, 2}),
              "\"/a.ogg\",1208925819614629174706176.000,\"1281023894007607:45:04\",2,,,\r\n")
        << "hours of at most 2^62 seconds";
}

TEST(CsvReport, ShowsAFileOutOfAnArchiveBelowTheArchive) {
    ScanDetails details;
    details.archiveOf = {{"/tmp/velmora-1", "/m/set.zip"}};
    details.files = {{"/tmp/velmora-1/01.wav", 1, 0}};
    EXPECT_EQ(csvReport(details, 1), header + "\"/m/set.zip/01.wav\",1.000,\"00:00:01\",0,,,\r\n");
}

} // namespace
} // namespace velmora
