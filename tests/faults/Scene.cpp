#include "tests/faults/Scene.h"

#include "tests/faults/Surroundings.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

namespace velmora::test {

namespace {

constexpr int interrupted = 130;
constexpr unsigned patience = 120; ///< seconds after which a scan of this little counts as hung
constexpr std::string_view oldZip = "an archive that was there before";

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The calls in a log of the fault injector.
std::vector<Call> readLog(const fs::path& log) {
    std::vector<Call> calls;
    for (const std::string& line : linesOf(read(log))) {
        std::istringstream words(line);
        Call call;
        words >> call.kind >> call.number >> std::ws;
        std::getline(words, call.path);
        calls.push_back(std::move(call));
    }
    return calls;
}

fs::path freshZip() {
    return write(freshFolder() / "Mix.zip", oldZip);
}

/// `path` as the first tool unpacks. Where tar cannot be started, gunzip makes a.tar of a.tar.gz, which is
/// then unpacked in its turn: the same files, one archive deeper.
std::string withoutDetour(const std::string& path) {
    return std::regex_replace(path, std::regex("/([^/]*\\.tar)\\.gz/\\1/"), "/$1.gz/");
}

} // namespace

/// Holds one run against the run without faults.
class Scene::Judge {
public:
    Judge(const Scene& scene, const Run& run)
        : m_scene(scene)
        , m_run(run)
        , m_report(QJsonDocument::fromJson(QByteArray::fromStdString(run.finished.output)).object()) {}

    std::string complaints() {
        judgeEnd();
        judgeMessages();
        if (!m_report.isEmpty()) {
            judgeReport();
        }
        judgeZip();
        expect(namesIn(m_run.temporary).empty(), "left " + testing::PrintToString(namesIn(m_run.temporary)));
        expect(m_scene.sourcesNow() == m_scene.m_before, "changed the sources");
        return m_complaints.empty() ? ""
                                    : m_complaints + "status " + std::to_string(status()) + ", errors:\n" +
                                          m_run.finished.errors;
    }

private:
    void expect(bool condition, const std::string& complaint) {
        m_complaints += condition ? "" : complaint + "\n";
    }

    int status() const { return m_run.finished.status; }

    bool says(const std::string& text) const { return m_run.finished.errors.find(text) != std::string::npos; }

    /// Whether it names `path`, or a folder or archive that the path leads through, as something it could not
    /// read.
    bool names(fs::path path) const {
        for (; path.has_relative_path(); path = path.parent_path()) {
            if (says("'" + path.native() + "'")) {
                return true;
            }
        }
        return false;
    }

    bool reportFailed() const { return says("cannot write the report"); }

    void judgeEnd() {
        if (status() == interrupted && !m_run.finished.signalled) {
            return;
        }
        const bool knowsWhat = !says("cannot read the list"); // else: a command line it cannot carry out
        const std::set<int> valid = knowsWhat ? std::set{0, 1, 3, 4} : std::set{2};
        expect(!m_run.finished.signalled, "died of signal " + std::to_string(status() - 128));
        expect(valid.contains(status()), "exit status " + std::to_string(status()));
        expect(status() == 0 || !m_run.finished.errors.empty(), "failed without a word");
        expect(!m_report.isEmpty() || reportFailed() || status() == 2 || status() == 3, "gave no report");
    }

    void judgeMessages() {
        for (const std::string& line : linesOf(m_run.finished.errors)) {
            expect(line.starts_with("velmora-scan: "), "a message that is not its own: " + line);
        }
        expect(status() != 0 || m_run.finished.errors.empty(), "complained, but exit status 0");
    }

    void judgeReport() {
        double seconds = 0;
        std::int64_t bytes = 0;
        std::set<std::string> measured;
        for (const QJsonValue value : m_report["files"].toArray()) {
            const std::string path = withoutDetour(value["path"].toString().toStdString());
            const TimedFile found{value["seconds"].toDouble(), value["bytes"].toInteger()};
            const auto right = m_scene.m_files.find(path);
            expect(right != m_scene.m_files.end(), "found what is not there: " + path);
            expect(right == m_scene.m_files.end() || right->second == found,
                   "wrong: " + path + " " + std::to_string(found.seconds) + " s, " +
                       std::to_string(found.bytes) + " bytes");
            seconds += found.seconds;
            bytes += found.bytes;
            measured.insert(path);
        }
        expect(std::abs(m_report["seconds"].toDouble() - seconds) < 1e-6, "a total that is not the sum");
        expect(m_report["bytes"].toInteger() == bytes, "a size that is not the sum");
        expect(m_report["fileCount"].toInteger() == static_cast<qint64>(measured.size()), "a wrong count");
        judgeMissing(measured);
    }

    void judgeMissing(const std::set<std::string>& measured) {
        for (const auto& [path, file] : m_scene.m_files) {
            expect(measured.contains(path) || names(path), "missing without a word: " + path);
            expect(measured.contains(path) || status() != 0, "exit status 0 without " + path);
        }
        const bool whole = measured.size() == m_scene.m_files.size();
        expect(status() != 1 || !whole || reportFailed() || namesAFolder(),
               "exit status 1, but nothing is missing");
    }

    /// A folder that could not be listed to its end may be named though all that was in it was found.
    bool namesAFolder() const { return says("cannot read "); }

    void judgeZip() {
        if (read(m_run.zip) == oldZip) {
            expect(status() > 1, "did not write the zip");
            return;
        }
        const std::optional<ZipContent> content = contentOfZip(m_run.zip);
        expect(content.has_value(), "left a broken zip");
        expect(!content || std::ranges::includes(m_scene.m_zip, *content), "packed what is not there");
        const auto count = m_report["fileCount"].toInteger();
        expect(!content || m_report.isEmpty() || static_cast<qint64>(content->size()) == count,
               "packed fewer than were measured");
    }

    const Scene& m_scene;
    const Run& m_run;
    const QJsonObject m_report;
    std::string m_complaints;
};

Scene::Scene() {
    writeWav(m_folder / "1.wav", oneSecond);
    for (const char* name : {"2.flac", "3.mp3", "4.ogg", "5.m4a", "6.wma", "Disc 2/7.mka", "Disc 2/8.aiff"}) {
        encodeAudio(m_folder / name);
    }
    const fs::path packed = freshFolder();
    encodeAudio(packed / "In" / "1.mp3");
    writeWav(packed / "In" / "Deep" / "2.wav", oneSecond);
    shell("tar -czf nested.tar.gz In/1.mp3 && zip -qr archive.zip In nested.tar.gz && cp archive.zip " +
              shellWord(m_folder.native()) + " && tar -czf " +
              shellWord((m_folder / "archive.tar.gz").native()) + " In",
          packed);
    m_before = sourcesNow();

    const fs::path log = freshFolder() / "log";
    const fs::path temporary = freshFolder();
    const Run run =
        this->run({{"LD_PRELOAD", VELMORA_FAULT_INJECTOR}, {"VELMORA_FAULT_LOG", log}}, temporary);
    EXPECT_EQ(run.finished.status, 0) << run.finished.errors;
    EXPECT_EQ(run.finished.errors, "");
    const QJsonObject report =
        QJsonDocument::fromJson(QByteArray::fromStdString(run.finished.output)).object();
    for (const QJsonValue file : report["files"].toArray()) {
        m_files[file["path"].toString().toStdString()] = {file["seconds"].toDouble(),
                                                          file["bytes"].toInteger()};
    }
    m_zip = contentOfZip(run.zip).value_or(ZipContent());
    EXPECT_EQ(m_files.size(), 13U);
    EXPECT_EQ(m_zip.size(), m_files.size());
    m_calls = readLog(log);
}

std::string Scene::complaintsAbout(const std::string& fault) const {
    return Judge(*this, run(fault)).complaints();
}

std::string Scene::complaintsAfterDeathAt(const std::string& fault) const {
    const Run dead = run(fault);
    const Run next = run(Launch::Variables(), dead.temporary);
    const bool isWhole = read(dead.zip) == oldZip || contentOfZip(dead.zip);
    return (isWhole ? "" : "the dead one left a broken zip\n") + Judge(*this, next).complaints();
}

std::string Scene::complaintsAboutSignal(const std::string& fault, int signal) const {
    Run run{.finished = {}, .temporary = freshFolder(), .zip = freshZip()};
    ScanProcess process(launch(meeting(fault, run.temporary), run.temporary, run.zip));
    if (stops(process)) {
        process.send(signal);
        process.send(SIGCONT);
    }
    run.finished = process.wait();
    return Judge(*this, run).complaints();
}

Scene::Run Scene::run(const std::string& fault) const {
    const fs::path temporary = freshFolder();
    return run(meeting(fault, temporary), temporary);
}

Scene::Run Scene::run(const Launch::Variables& faults, const fs::path& temporary) const {
    const fs::path zip = freshZip();
    return {runToEnd(launch(faults, temporary, zip)), temporary, zip};
}

Launch Scene::launch(const Launch::Variables& faults, const fs::path& temporary, const fs::path& zip) const {
    const fs::path list = write(freshFolder() / "list", m_folder.native()); // a further file to read
    Launch launch{.arguments = {"--json", "--zip", zip, "--files0-from", list},
                  .environment = faults,
                  .beforeStart = [] { ::alarm(patience); }};
    launch.environment.emplace_back("TMPDIR", temporary);
    return launch;
}

/// A line an entry: what every change of its content, name, permissions or links would change.
std::string Scene::sourcesNow() const {
    std::ostringstream text;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_folder)) {
        struct stat status {};

        EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
        text << entry.path() << ' ' << status.st_ino << ' ' << status.st_mode << ' ' << status.st_size << ' '
             << status.st_nlink << ' ' << status.st_ctim.tv_sec << '.' << status.st_ctim.tv_nsec << '\n';
    }
    return text.str();
}

} // namespace velmora::test
