#include "tests/cli/ReportText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

QJsonObject parsed(const std::string& report) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(report), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << report;
    return document.object();
}

/// The object that was written as `report`, to the byte as Qt writes the whole of it.
QJsonObject written(const std::string& report) {
    const QJsonObject object = parsed(report);
    EXPECT_EQ(QJsonDocument(object).toJson().toStdString(), report);
    return object;
}

TEST(FilesReport, WritesALineAFileInScanOrder) {
    ScanDetails details;
    details.files = {{"/m/b.wav", 1.0005, 10}, {"/m/a.wav", -1.0, 20}, {"/m/c.wav", 3725.4567, 30}};
    EXPECT_EQ(filesReport(details), "1.000\t/m/b.wav\n-\t/m/a.wav\n3725.457\t/m/c.wav\n");
}

TEST(FilesReport, KeepsALineWholeWhateverAPathHolds) {
    ScanDetails details;
    details.files = {{"/m/a\nb\tc\\d\xFF.wav", 0, 0}};
    EXPECT_EQ(filesReport(details), "0.000\t/m/a\\nb\\tc\\\\d\xFF.wav\n");
}

TEST(FilesReport, WritesTheLongestDurationInFull) {
    ScanDetails details;
    details.files = {{"/m/a.ogg", 0x1p80, 0}};
    EXPECT_EQ(filesReport(details), "1208925819614629174706176.000\t/m/a.ogg\n");
}

TEST(FilesReport, ShowsAFileOutOfAnArchiveBelowTheArchive) {
    ScanDetails details;
    details.archiveOf = {{"/tmp/velmora-1", "/m/set.zip"}, {"/tmp/velmora-2", "/tmp/velmora-1/in/deep.tar"}};
    details.files = {{"/tmp/velmora-1/Disc 1/01.wav", 1, 0}, {"/tmp/velmora-2/02.wav", 2, 0}};
    EXPECT_EQ(filesReport(details),
              "1.000\t/m/set.zip/Disc 1/01.wav\n2.000\t/m/set.zip/in/deep.tar/02.wav\n");
}

TEST(FilesReport, IsEmptyWithoutFiles) {
    EXPECT_EQ(filesReport({}), "");
}

TEST(FindingsReport, WritesALineAFinding) {
    ScanDetails details;
    details.files = {{"/m/a.flac", 1, 10}, {"/m/b\tc.mp3", 2, 20}, {"/m/d.ogg", -1, 0}};
    const CheckResults checks = {
        {.findings = {{FindingKind::truncated, 12.0004, 4.5}, {FindingKind::foreign}}},
        {},
        {.findings = {{FindingKind::offset, std::nullopt, 2}}},
    };
    EXPECT_EQ(findingsReport(details, checks), "truncated\t12.000\t4.500\t/m/a.flac\n"
                                               "foreign\t-\t-\t/m/a.flac\n"
                                               "offset\t-\t2.000\t/m/d.ogg\n");
    EXPECT_EQ(findingsReport(details, CheckResults(3)), "");
}

TEST(FindingsReport, TellsOfFilesThatCouldNotBeReadToTheirEnd) {
    ScanDetails details;
    details.files = {{"/m/a.flac", 1, 10}, {"/m/b.mp3", 2, 20}};
    EXPECT_THAT(checkProblems(details, {{}, {.findings = {}, .error = EIO}}),
                ElementsAre("cannot check '/m/b.mp3': Input/output error"));
}

TEST(Reports, AreHandedOutFileByFile) {
    ScanDetails details;
    ScanSummary summary;
    details.files.assign(1000, {"/m/a.wav", 1, 2});
    details.files.resize(2000, {"/m/b.wav", unmeasured, 2, Reason::cutOff});
    summary.files = Paths(1000, "/m/a.wav");
    details.archiveOf.emplace("/x", "/x.zip");
    const Sink oneFile = [](std::string_view part) { EXPECT_LT(part.size(), 200); };
    filesReport(oneFile, details, 1);
    csvReport(oneFile, details, 1);
    jsonReport(oneFile, "COMPLETE", summary, details, {}, 1);
    namesReport(oneFile, summary.files);
}

TEST(JsonReport, HoldsTheFindingsOfEachFile) {
    ScanDetails details;
    details.files = {{"/m/a.flac", 1, 10}, {"/m/b.mp3", 2, 20}, {"/m/c.mp3", -1, 20, Reason::cutOff}};
    const QJsonObject json = written(jsonReport("COMPLETE", {}, details,
                                                {{.findings = {{FindingKind::truncated, 12.5, std::nullopt}}},
                                                 {},
                                                 {.findings = {{FindingKind::damaged, std::nullopt, 0.5}}}}));
    EXPECT_EQ(json["files"][0]["findings"],
              (QJsonArray{QJsonObject{{"kind", "truncated"}, {"stated", 12.5}, {"found", QJsonValue()}}}));
    EXPECT_EQ(json["files"][1]["findings"], QJsonArray());
    EXPECT_EQ(json["unreadableFiles"][0]["findings"],
              (QJsonArray{QJsonObject{{"kind", "damaged"}, {"stated", QJsonValue()}, {"found", 0.5}}}));
    const QJsonObject unchecked = written(jsonReport("COMPLETE", {}, details));
    EXPECT_TRUE(unchecked["files"][0]["findings"].isUndefined());
}

TEST(JsonReport, HoldsTheWholeScan) {
    ScanDetails details;
    details.files = {{"/m/a.wav", 1.5, 10}, {"/m/b.mp3", -1.0, 20, Reason::noFrames}, {"/m/c.wav", 0.25, 30}};
    details.skippedArchives = {{"/m/x.zip", Reason::encrypted}};
    details.unreadableFolders = {{"/m/shut", EACCES}};
    const ScanSummary summary{.seconds = 1.75,
                              .fileCount = 2,
                              .bytes = 40,
                              .formats = {{"WAV", 2, 1.75}},
                              .longestName = "a.wav",
                              .longestSeconds = 1.5,
                              .unreadable = 2,
                              .source = "M",
                              .files = {"/m/a.wav", "/m/c.wav"},
                              .dropped = {"/m"},
                              .roots = {"/m"}};

    const char* expected = R"({
        "schema": 1, "status": "COMPLETE", "source": "M", "seconds": 1.75, "speed": 1, "fileCount": 2, "bytes": 40,
        "unreadable": 2, "skippedArchives": 1, "formats": [{"ext": "WAV", "count": 2, "seconds": 1.75}],
        "longestName": "a.wav", "longestSeconds": 1.5,
        "files": [{"path": "/m/a.wav", "seconds": 1.5, "bytes": 10},
                  {"path": "/m/c.wav", "seconds": 0.25, "bytes": 30}],
        "unreadableFiles": [{"path": "/m/b.mp3", "why": "no audio frames"}],
        "skippedArchiveFiles": [{"path": "/m/x.zip", "why": "archive is encrypted"}],
        "unreadableFolders": [{"path": "/m/shut", "why": "Permission denied"}]
    })";
    EXPECT_EQ(written(jsonReport("COMPLETE", summary, details)), parsed(expected));
}

TEST(JsonReport, SaysWhatTheSoundIsWhereThatIsKnown) {
    ScanDetails details;
    details.files = {{"/a.flac", 1, 2, {}, 6, 96'000, "FLAC"}, {"/a.wma", 1, 2, {}, 0, 0, "ASF"}};
    const QJsonValue files = written(jsonReport("", {}, details))["files"];
    EXPECT_EQ(files[0].toObject(), parsed(R"({"path": "/a.flac", "seconds": 1, "bytes": 2, "format": "FLAC",
                                              "sampleRate": 96000, "channels": 6})"));
    EXPECT_EQ(files[1].toObject(),
              parsed(R"({"path": "/a.wma", "seconds": 1, "bytes": 2, "format": "ASF"})"));
}

TEST(JsonReport, DividesEveryLength) {
    ScanDetails details;
    details.files = {{"/a.wav", 3, 2}};
    ScanSummary summary;
    summary.seconds = 3;
    summary.formats = {{"WAV", 1, 3}};
    summary.longestSeconds = 3;
    const QJsonObject object = written(jsonReport("", summary, details, {}, 2));
    EXPECT_EQ(object["speed"].toDouble(), 2);
    EXPECT_EQ(object["seconds"].toDouble(), 1.5);
    EXPECT_EQ(object["longestSeconds"].toDouble(), 1.5);
    EXPECT_EQ(object["formats"][0]["seconds"].toDouble(), 1.5);
    EXPECT_EQ(object["files"][0]["seconds"].toDouble(), 1.5);
}

TEST(JsonReport, HasEveryKeyWhenNothingWasFound) {
    const QJsonObject object = written(jsonReport("NO AUDIO FOUND", {}, {}));
    EXPECT_EQ(object,
              parsed(R"({"schema": 1, "status": "NO AUDIO FOUND", "source": "", "seconds": 0, "speed": 1,
        "fileCount": 0, "bytes": 0, "unreadable": 0, "skippedArchives": 0, "formats": [],
        "longestName": "", "longestSeconds": 0, "files": [], "unreadableFiles": [],
        "skippedArchiveFiles": [], "unreadableFolders": []})"));
}

TEST(JsonReport, WritesNumbersThatReadBackToTheSame) {
    for (const double seconds : {0.1, 1.0 / 3, 133423.0 / 44100, 5e-324, 0x1.fffffffffffffp+62, 1e300,
                                 std::nextafter(1.0, 2.0), 9007199254740993.0}) {
        ScanDetails details;
        details.files = {{"/a.wav", seconds, 0}};
        ScanSummary summary;
        summary.seconds = seconds;
        const QJsonObject object = written(jsonReport("", summary, details));
        EXPECT_EQ(object["seconds"].toDouble(), seconds);
        EXPECT_EQ(object["files"][0]["seconds"].toDouble(), seconds);
    }
}

TEST(JsonReport, WritesEveryByteCountExactly) {
    constexpr std::int64_t most = 9'223'372'036'854'775'807;
    ScanDetails details;
    details.files = {{"/a.wav", 1, most}};
    ScanSummary summary;
    summary.bytes = most;
    const QJsonObject object = written(jsonReport("", summary, details));
    EXPECT_EQ(object["bytes"].toInteger(), most);
    EXPECT_EQ(object["files"][0]["bytes"].toInteger(), most);
}

TEST(JsonReport, CarriesTheBytesOfAPathThatIsNotUtf8) {
    ScanDetails details;
    details.files = {{"/S\xFC\xDF.wav", 1, 2}, {"/S\xFC\xDF.mp3", -1.0, 2}, {"/Süß.wav", 1, 2}};
    const QJsonObject object = written(jsonReport("", {}, details));

    EXPECT_EQ(object["files"][0]["path"].toString(), QString::fromUtf8("/S\uFFFD\uFFFD.wav"));
    EXPECT_EQ(QByteArray::fromBase64(object["files"][0]["pathBytes"].toString().toLatin1()),
              "/S\xFC\xDF.wav");
    EXPECT_EQ(QByteArray::fromBase64(object["unreadableFiles"][0]["pathBytes"].toString().toLatin1()),
              "/S\xFC\xDF.mp3");
    EXPECT_EQ(object["files"][1]["path"].toString(), QString::fromUtf8("/Süß.wav"));
    EXPECT_TRUE(object["files"][1]["pathBytes"].isUndefined());
}

TEST(JsonReport, TakesAReplacementCharacterInANameForItself) {
    ScanDetails details;
    details.files = {{"/a\uFFFD\uFFFE.wav", 1, 2}};
    const QJsonValue file = written(jsonReport("", {}, details))["files"][0];
    EXPECT_EQ(file["path"].toString(), QString::fromUtf8("/a\uFFFD\uFFFE.wav"));
    EXPECT_TRUE(file["pathBytes"].isUndefined());
}

TEST(JsonReport, KeepsAByteOrderMarkAtTheBeginningOfAName) {
    ScanSummary summary;
    summary.longestName = "\uFEFFa.wav";
    EXPECT_THAT(jsonReport("", summary, {}), HasSubstr("\"longestName\": \"\uFEFFa.wav\""));
}

TEST(JsonReport, EscapesControlCharactersAndQuotes) {
    ScanDetails details;
    details.files = {{"/a\n\x1B\"\\.wav", 1, 2}};
    EXPECT_EQ(written(jsonReport("", {}, details))["files"][0]["path"].toString(), "/a\n\x1B\"\\.wav");
}

TEST(Problems, NameAllThatIsMissingAndWhy) {
    ScanDetails details;
    details.archiveOf = {{"/tmp/velmora-1", "/m/set.zip"}};
    details.files = {{"/m/a.wav", 1, 1},
                     {"/m/b\x1B.wav", -1.0, 1, Reason::notAudio},
                     {"/tmp/velmora-1/c.wav", -1.0, 1, Reason::empty}};
    details.skippedArchives = {{"/m/x.zip", Reason::noRoom}, {"/tmp/velmora-1/y.7z", Reason::encrypted}};
    details.unreadableFolders = {{"/tmp/velmora-1/shut", EACCES}};
    EXPECT_THAT(problems(details), ElementsAre("cannot read '/m/set.zip/shut': Permission denied",
                                               "cannot unpack '/m/x.zip': not enough room",
                                               "cannot unpack '/m/set.zip/y.7z': archive is encrypted",
                                               "cannot time '/m/b\\x1B.wav': not audio",
                                               "cannot time '/m/set.zip/c.wav': empty file"));
}

} // namespace
} // namespace velmora
