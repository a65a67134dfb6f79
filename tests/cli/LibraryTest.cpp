// A folder of everything: a track of each format a real encoder exists for, archives of each kind and in each
// other, what cannot be read. The whole JSON object is compared.

#include "records/AudioExtensions.h"
#include "tests/cli/ScanProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace velmora::test {
namespace {

using testing::UnorderedElementsAreArray;

/// Formats nothing here can encode.
const std::set<std::string> withoutEncoder = {"aa", "aax", "ape", "dff", "dsf"};

/// Seconds by which a track may be off in any format: what the coarsest of their clocks rounds by.
constexpr double rounding = 0.001;

/// Seconds by which a format may be longer than what was encoded: its frames are filled up, and some have an
/// empty one in front.
const std::map<std::string, double> padding = {{"aac", 2 * 1024 / 44'100.0}, {"adts", 2 * 1024 / 44'100.0},
                                               {"amr", 160 / 8'000.0},       {"mp2", 1152 / 44'100.0},
                                               {"ra", 1536 / 44'100.0},      {"wma", 2048 / 44'100.0}};

constexpr AudioShape twoSeconds{.frames = 16'000, .rate = 8'000, .channels = 1};

struct Track {
    std::string path; ///< as the report shows it
    double seconds;   ///< of what was encoded
    std::int64_t bytes;
};

std::string formatOf(const std::string& path) {
    return path.substr(path.rfind('.') + 1);
}

struct Missing {
    std::string path; ///< as the report shows it
    std::string why;
};

/// The folder. Its members say what a report of it has to hold.
class Library {
public:
    Library() {
        fs::create_directories(packedFolder);
        encodeEveryFormat();
        packInEveryWay();
        addBrokenTracks();
        addBrokenArchives();
    }

    const fs::path folder = freshFolder() / "Library";
    std::vector<Track> loose;             ///< the tracks outside archives, in scan order
    std::vector<Track> packed;            ///< the tracks in archives, by path
    std::vector<Missing> unreadable;      ///< in scan order
    std::vector<Missing> skippedArchives; ///< in any order

private:
    static void add(std::vector<Track>& tracks, const fs::path& shown, const fs::path& file, double seconds) {
        tracks.push_back({shown, seconds, static_cast<std::int64_t>(fs::file_size(file))});
    }

    void encodeEveryFormat() {
        for (const std::string_view name : Collector::audioExts) {
            const std::string format(name);
            if (!withoutEncoder.contains(format)) {
                const fs::path track = encodeAudio(folder / "Formats" / ("track." + format));
                add(loose, track, track, AudioShape{}.seconds());
            }
        }
        std::ranges::sort(loose, {}, &Track::path);
        for (const char* name : {"take 2.wav", "take 10.wav"}) { // by number, not by digit
            const fs::path take = writeWav(folder / "Takes" / name, twoSeconds);
            add(loose, take, take, twoSeconds.seconds());
        }
    }

    void packInEveryWay() {
        const fs::path wav = writeWav(unpacked / "Disc 1" / "1.wav", twoSeconds);
        const fs::path flac = encodeAudio(unpacked / "Disc 1" / "Extra" / "2.flac", twoSeconds);
        const auto holdsBoth = [&](const std::string& archive) {
            add(packed, packedFolder / archive / "Disc 1/1.wav", wav, twoSeconds.seconds());
            add(packed, packedFolder / archive / "Disc 1/Extra/2.flac", flac, twoSeconds.seconds());
        };
        const std::string to = " " + shellWord(packedFolder.native()) + "/";
        for (const char* archive : {"a.tar", "b.tar.gz", "c.tar.bz2", "d.tar.xz"}) {
            shell("tar -caf" + to + archive + " 'Disc 1'", unpacked);
            holdsBoth(archive);
        }
        shell("zip -qr" + to + "e.zip 'Disc 1' && 7z a" + to + "f.7z 'Disc 1' >/dev/null", unpacked);
        holdsBoth("e.zip");
        holdsBoth("f.7z");
        shell("gzip -c 'Disc 1/1.wav' >" + to + "g.wav.gz", unpacked);
        add(packed, packedFolder / "g.wav.gz" / "g.wav", wav, twoSeconds.seconds());

        // Four deep: three are opened, the innermost is not.
        shell("tar -czf 4.tar.gz 'Disc 1' && tar -cf 3.tar 4.tar.gz 'Disc 1' && zip -q 2.zip 3.tar && 7z a" +
                  to + "h.7z 2.zip >/dev/null",
              unpacked);
        holdsBoth("h.7z/2.zip/3.tar");
        skippedArchives.push_back({packedFolder / "h.7z/2.zip/3.tar/4.tar.gz", "nested too deep"});
    }

    void addBrokenTracks() {
        shell("mkdir Broken && cd Broken && touch empty.wav && mkfifo fifo.wav && ln -s nowhere link.wav",
              folder);
        unreadable = {{folder / "Broken/empty.wav", "empty file"},
                      {folder / "Broken/fifo.wav", "not a regular file"},
                      {folder / "Broken/link.wav", "not there"}};
        for (const std::string& format : withoutEncoder) {
            const std::string why = format == "aax" ? "not audio" : "no audio frames"; // a game's own format
            unreadable.push_back(
                {write(folder / "Broken" / ("text." + format), std::string(5000, 'x')), why});
        }
        const fs::path page =
            write(folder / "Broken" / "web.mp3", "<!DOCTYPE html>" + std::string(5000, ' '));
        shell("mkdir b && cp " + shellWord(page.native()) + " b/ && tar -cf " +
                  shellWord((packedFolder / "i.tar").native()) + " b",
              unpacked);
        unreadable.push_back({page, "no audio frames"});
        unreadable.push_back({packedFolder / "i.tar" / "b" / "web.mp3", "no audio frames"});
    }

    void addBrokenArchives() {
        shell(
            "head -c 100 Packed/e.zip > Broken/cut.zip && head -c 100 Packed/b.tar.gz > Broken/cut.tar.gz &&"
            "echo text > Broken/text.7z && mkfifo Broken/fifo.zip && zip -qr -P word Broken/secret.zip Takes",
            folder);
        const fs::path broken = folder / "Broken";
        skippedArchives.insert(skippedArchives.end(), {{broken / "cut.zip", "archive is damaged"},
                                                       {broken / "cut.tar.gz", "archive is damaged"},
                                                       {broken / "text.7z", "no tool can unpack it"},
                                                       {broken / "fifo.zip", "not a regular file"},
                                                       {broken / "secret.zip", "archive is encrypted"}});
    }

    const fs::path packedFolder = folder / "Packed";
    const fs::path unpacked = freshFolder();
};

/// Takes the tracks of `files` out of archives into the order of their paths: that of whole archives is left
/// to chance.
QJsonArray ordered(const QJsonArray& files, std::size_t loose) {
    std::vector<QJsonValue> values(files.begin(), files.end());
    std::ranges::sort(values.begin() + static_cast<std::ptrdiff_t>(std::min(loose, values.size())),
                      values.end(), {}, [](const QJsonValue& file) { return file["path"].toString(); });
    QJsonArray result;
    std::ranges::copy(values, std::back_inserter(result));
    return result;
}

/// The length in the report if `track` may be that long; else the one it has to have.
double acceptedSeconds(const Track& track, double reported) {
    const auto row = padding.find(formatOf(track.path));
    const double most = rounding + (row == padding.end() ? 0 : row->second);
    return reported > track.seconds - rounding && reported < track.seconds + most ? reported : track.seconds;
}

/// What the report has to hold of the sound of `track`. Nothing is known of the sound of Windows Media.
QJsonObject expectedSound(const Track& track) {
    static const std::map<std::string, const char*> otherNames = {
        {"3ga", "MP4"},    {"adts", "AAC"},     {"aif", "AIFF"}, {"aifc", "AIFF-C"},
        {"alac", "MP4"},   {"bwf", "WAV"},      {"m4a", "MP4"},  {"m4b", "MP4"},
        {"m4r", "MP4"},    {"mka", "Matroska"}, {"oga", "Ogg"},  {"mpc", "Musepack SV8"},
        {"opus", "Ogg"},   {"ogg", "Ogg"},      {"snd", "AU"},   {"sd2", "Sound Designer"},
        {"w64", "Wave64"}, {"wave", "WAV"},     {"wma", "ASF"},  {"ra", "RealMedia"},
        {"wv", "WavPack"}};
    const std::string format = formatOf(track.path);
    const auto name = otherNames.find(format);
    QJsonObject sound{{"format", name != otherNames.end() ? QString(name->second)
                                                          : QString::fromStdString(format).toUpper()}};
    if (format != "wma") {
        const bool isEncoded = track.path.find("/Formats/") != std::string::npos;
        const bool isSpeech = !isEncoded || format == "amr";
        sound["sampleRate"] = isSpeech ? 8000 : format == "opus" ? 48000 : 44100;
        sound["channels"] = isSpeech ? 1 : 2;
    }
    return sound;
}

/// What the report has to hold of the files, with the lengths `reported` where they are right.
QJsonArray expectedFiles(const Library& library, const QJsonArray& reported) {
    std::vector<Track> tracks = library.loose;
    tracks.insert(tracks.end(), library.packed.begin(), library.packed.end());
    QJsonArray files;
    for (const Track& track : tracks) {
        const double seconds = reported[files.size()]["seconds"].toDouble();
        QJsonObject file = expectedSound(track);
        file["path"] = QString::fromStdString(track.path);
        file["seconds"] = acceptedSeconds(track, seconds);
        file["bytes"] = static_cast<qint64>(track.bytes);
        files.append(file);
    }
    return files;
}

/// What follows from the files: the sums, in the files' own order, and the longest.
QJsonObject expectedSums(const QJsonArray& files) {
    double seconds = 0;
    qint64 bytes = 0;
    QJsonValue longest;
    std::map<QString, std::pair<int, double>> formats; // files, and their seconds
    for (const QJsonValue file : files) {
        seconds += file["seconds"].toDouble();
        bytes += file["bytes"].toInteger();
        longest = file["seconds"].toDouble() > longest["seconds"].toDouble() ? file : longest;
        auto& [count, sum] = formats[file["path"].toString().section('.', -1).toUpper()];
        ++count;
        sum += file["seconds"].toDouble();
    }
    std::vector<std::pair<QString, std::pair<int, double>>> rows(formats.begin(), formats.end());
    std::ranges::stable_sort(rows, std::ranges::greater(), [](const auto& row) { return row.second.second; });
    QJsonArray rowObjects;
    for (const auto& [ext, format] : rows) {
        rowObjects.append(QJsonObject{{"ext", ext}, {"count", format.first}, {"seconds", format.second}});
    }
    return {{"seconds", seconds},
            {"bytes", bytes},
            {"fileCount", static_cast<int>(files.size())},
            {"formats", rowObjects},
            {"longestName", longest["path"].toString().section('/', -1)},
            {"longestSeconds", longest["seconds"]}};
}

QJsonObject missingObject(const std::string& path, const std::string& why) {
    return {{"path", QString::fromStdString(path)}, {"why", QString::fromStdString(why)}};
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(LibraryOfEverything, IsReportedWhole) {
    const Library library;
    const Finished run =
        runToEnd({.arguments = {"--json", "Library"}, .folder = library.folder.parent_path()});

    QJsonObject report = QJsonDocument::fromJson(QByteArray::fromStdString(run.output)).object();
    QJsonObject expected = expectedSums(report["files"].toArray());
    report["files"] = ordered(report["files"].toArray(), library.loose.size());
    expected["files"] = expectedFiles(library, report["files"].toArray());
    expected["schema"] = 1;
    expected["speed"] = 1;
    expected["status"] = "COMPLETE";
    expected["source"] = "LIBRARY";
    expected["skippedArchives"] = static_cast<int>(library.skippedArchives.size());
    expected["unreadable"] = static_cast<int>(library.skippedArchives.size() + library.unreadable.size());
    QJsonArray unreadable;
    std::vector<std::string> messages;
    for (const auto& [path, why] : library.unreadable) {
        unreadable.append(missingObject(path, why));
        messages.push_back("velmora-scan: cannot time '" + path + "': " + why);
    }
    expected["unreadableFiles"] = unreadable;
    expected["unreadableFolders"] = QJsonArray();
    std::vector<QJsonValue> skipped;
    for (const auto& [path, why] : library.skippedArchives) {
        skipped.emplace_back(missingObject(path, why));
        messages.push_back("velmora-scan: cannot unpack '" + path + "': " + why);
    }
    const QJsonArray reported = report.take("skippedArchiveFiles").toArray();
    EXPECT_THAT(std::vector<QJsonValue>(reported.begin(), reported.end()),
                UnorderedElementsAreArray(skipped));

    EXPECT_EQ(QJsonDocument(report).toJson().toStdString(), QJsonDocument(expected).toJson().toStdString());
    EXPECT_THAT(linesOf(run.errors), UnorderedElementsAreArray(messages));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(library.loose.size() + withoutEncoder.size() - 2, Collector::audioExts.size());
}

} // namespace
} // namespace velmora::test
