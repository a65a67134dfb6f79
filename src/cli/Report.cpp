#include "cli/Report.h"

#include "cli/CsvReport.h"
#include "cli/FoldersReport.h"
#include "cli/Seconds.h"
#include "scan/Missing.h"
#include "system/Names.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <string_view>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// The version of the object's keys and their meaning.
constexpr int jsonSchema = 1;

QString textOf(const std::string& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

QJsonObject pathObject(const fs::path& path) {
    const QString text = textOf(path.native());
    QJsonObject object{{"path", text}};
    const QByteArray bytes = QByteArray::fromStdString(path.native());
    if (text.toUtf8() != bytes) {
        object["pathBytes"] = QString::fromLatin1(bytes.toBase64());
    }
    return object;
}

QJsonArray formatArray(const std::vector<FormatStat>& formats, double speed) {
    QJsonArray array;
    for (const FormatStat& format : formats) {
        array.append(QJsonObject{
            {"ext", textOf(format.ext)}, {"count", format.count}, {"seconds", format.seconds / speed}});
    }
    return array;
}

QJsonValue secondsValue(const std::optional<double>& seconds) {
    return seconds ? QJsonValue(*seconds) : QJsonValue();
}

/// Adds what the check of a file came to.
void addFindings(QJsonObject& object, const CheckResults& checks, std::size_t index) {
    if (checks.empty()) {
        return;
    }
    QJsonArray array;
    for (const Finding& finding : checks[index].findings) {
        array.append(QJsonObject{{"kind", textOf(std::string(nameOf(finding.kind)))},
                                 {"stated", secondsValue(finding.stated)},
                                 {"found", secondsValue(finding.found)}});
    }
    object["findings"] = array;
}

QJsonObject missingObject(const Missing& missing, const ScanDetails& details) {
    QJsonObject object = pathObject(details.shownPath(missing.path));
    object["why"] = textOf(missing.why);
    return object;
}

template <typename Cause>
QJsonArray missingArray(const std::vector<Cause>& causes, const ScanDetails& details) {
    QJsonArray array;
    for (const Cause& cause : causes) {
        array.append(missingObject(missing(cause), details));
    }
    return array;
}

QJsonObject measuredObject(const Measured& file, const ScanDetails& details, double speed) {
    QJsonObject object = pathObject(details.shownPath(file.url));
    object["seconds"] = file.seconds / speed;
    object["bytes"] = static_cast<qint64>(file.bytes);
    if (file.format.isKnown()) {
        object["format"] = textOf(std::string(file.format.text()));
    }
    if (file.sampleRate > 0) {
        object["sampleRate"] = static_cast<qint64>(file.sampleRate);
    }
    if (file.channels > 0) {
        object["channels"] = file.channels;
    }
    return object;
}

std::string problem(std::string_view what, const Missing& missing, const ScanDetails& details) {
    return std::string(what) + " " + quotedName(details.shownPath(missing.path).native()) + ": " +
           missing.why;
}

} // namespace

std::string report(const Options& options, const ScanModel& model, const CheckResults& checks) {
    switch (options.output) {
    case Output::total:
        return model.totalText(options.speed) + "\n";
    case Output::list:
        return model.fileListText() + "\n";
    case Output::files:
        return filesReport(model.details(), options.speed);
    case Output::folders:
        return foldersReport(model.details(), model.summary().dropped, options.depth, options.speed);
    case Output::csv:
        return csvReport(model.details(), options.speed);
    case Output::json:
        return jsonReport(model.status(), model.summary(), model.details(), checks, options.speed);
    case Output::findings:
        return findingsReport(model.details(), checks);
    }
    return {};
}

std::string filesReport(const ScanDetails& details, double speed) {
    std::string text;
    for (const Measured& file : details.files) {
        text += file.seconds < 0 ? "-" : threeDecimals(file.seconds / speed);
        text += "\t" + fieldName(details.shownPath(file.url).native()) + "\n";
    }
    return text;
}

std::string jsonReport(const std::string& status, const ScanSummary& summary, const ScanDetails& details,
                       const CheckResults& checks, double speed) {
    QJsonArray measured;
    QJsonArray unreadable;
    for (std::size_t i = 0; i < details.files.size(); ++i) {
        const Measured& file = details.files[i];
        const bool isMissing = file.seconds < 0;
        QJsonObject object =
            isMissing ? missingObject(missing(file), details) : measuredObject(file, details, speed);
        addFindings(object, checks, i);
        (isMissing ? unreadable : measured).append(object);
    }
    const QJsonObject object{
        {"schema", jsonSchema},
        {"status", textOf(status)},
        {"source", textOf(summary.source)},
        {"seconds", summary.seconds / speed},
        {"speed", speed},
        {"fileCount", summary.fileCount},
        {"bytes", static_cast<qint64>(summary.bytes)},
        {"unreadable", summary.unreadable},
        {"skippedArchives", static_cast<qint64>(details.skippedArchives.size())},
        {"formats", formatArray(summary.formats, speed)},
        {"longestName", textOf(summary.longestName)},
        {"longestSeconds", summary.longestSeconds / speed},
        {"files", measured},
        {"unreadableFiles", unreadable},
        {"skippedArchiveFiles", missingArray(details.skippedArchives, details)},
        {"unreadableFolders", missingArray(details.unreadableFolders, details)},
    };
    return QJsonDocument(object).toJson().toStdString();
}

std::string findingsReport(const ScanDetails& details, const CheckResults& checks) {
    const auto field = [](const std::optional<double>& seconds) {
        return (seconds ? threeDecimals(*seconds) : "-") + "\t";
    };
    std::string text;
    for (std::size_t i = 0; i < checks.size(); ++i) {
        const std::string path = fieldName(details.shownPath(details.files[i].url).native());
        for (const Finding& finding : checks[i].findings) {
            text += std::string(nameOf(finding.kind)) + "\t" + field(finding.stated) + field(finding.found) +
                    path + "\n";
        }
    }
    return text;
}

std::vector<std::string> problems(const ScanDetails& details) {
    std::vector<std::string> messages;
    for (const UnreadableFolder& folder : details.unreadableFolders) {
        messages.push_back(problem("cannot read", missing(folder), details));
    }
    for (const SkippedArchive& archive : details.skippedArchives) {
        messages.push_back(problem("cannot unpack", missing(archive), details));
    }
    for (const Measured& file : details.files) {
        if (file.seconds < 0) {
            messages.push_back(problem("cannot time", missing(file), details));
        }
    }
    return messages;
}

std::vector<std::string> checkProblems(const ScanDetails& details, const CheckResults& checks) {
    std::vector<std::string> messages;
    for (std::size_t i = 0; i < checks.size(); ++i) {
        if (checks[i].error != 0) {
            const Missing rest{details.files[i].url, std::generic_category().message(checks[i].error)};
            messages.push_back(problem("cannot check", rest, details));
        }
    }
    return messages;
}

} // namespace velmora
