// What is written about files whose names may hold any byte: it parses back.

#include "cli/Report.h"
#include "fuzz/Targets.h"
#include "system/Names.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <bit>
#include <cmath>

namespace velmora::fuzz {

namespace {

std::string bytesOfPath(const QJsonObject& object) {
    const QByteArray bytes = object.contains("pathBytes")
                                 ? QByteArray::fromBase64(object["pathBytes"].toString().toLatin1())
                                 : object["path"].toString().toUtf8();
    return bytes.toStdString();
}

std::string collected(const Text& text) {
    std::string all;
    text([&](std::string_view part) { all += part; });
    return all;
}

Measured measuredFrom(Input& input) {
    Measured file;
    const auto seconds = std::bit_cast<double>(input.number());
    file.seconds = std::isfinite(seconds) && seconds >= 0 ? seconds : unmeasured;
    file.bytes = static_cast<std::int64_t>(input.number() >> 11); // what a double holds exactly
    file.url = "/" + input.text();
    return file;
}

void requireReadBack(const QJsonArray& array, const std::vector<Measured>& files) {
    require(array.size() == std::ssize(files), "each file is written once");
    for (qsizetype i = 0; i < array.size(); ++i) {
        const QJsonObject object = array[i].toObject();
        const Measured& file = files[static_cast<std::size_t>(i)];
        require(bytesOfPath(object) == file.url.native(), "a path reads back");
        require(object["seconds"].toDouble(unmeasured) == file.seconds, "seconds read back");
        require(file.seconds < 0 || object["bytes"].toInteger() == file.bytes, "bytes read back");
    }
}

} // namespace

void fuzzJson(Bytes bytes) {
    Input input(bytes);
    ScanSummary summary;
    const double seconds = std::abs(std::bit_cast<double>(input.number()));
    summary.seconds = std::isfinite(seconds) ? seconds : 0;
    summary.source = input.text();
    summary.longestName = input.text();
    summary.formats.push_back({input.text(), 1, 1.5});
    ScanDetails details;
    while (!input.isUsedUp()) {
        details.files.push_back(measuredFrom(input));
    }
    const std::string text =
        collected([&](const Sink& out) { jsonReport(out, "COMPLETE", summary, details, {}, 1); });
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error).object();
    require(error.error == QJsonParseError::NoError, "what is written parses back");
    require(object["seconds"].toDouble(-1) == summary.seconds, "the total reads back");
    const auto unreadable = std::stable_partition(details.files.begin(), details.files.end(),
                                                  [](const Measured& file) { return file.seconds >= 0; });
    requireReadBack(object["files"].toArray(), {details.files.begin(), unreadable});
    requireReadBack(object["unreadableFiles"].toArray(), {unreadable, details.files.end()});
    const std::string lines = collected([&](const Sink& out) { filesReport(out, details, 1); });
    require(std::ranges::count(lines, '\n') == std::ssize(details.files), "a file is a line");
}

void fuzzShownNames(Bytes bytes) {
    const std::string name(bytes.begin(), bytes.end());
    require(fieldName(name).find_first_of("\t\n") == std::string::npos, "a field holds no separator");
    for (const std::string& shown : {terminalText(name), quotedName(name)}) {
        require(std::ranges::none_of(shown, [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }),
                "what is shown does not act on a terminal");
    }
}

} // namespace velmora::fuzz
