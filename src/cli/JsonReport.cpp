#include "cli/JsonReport.h"

#include "scan/Missing.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <optional>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

/// The version of the object's keys and their meaning.
constexpr int jsonSchema = 1;

QString textOf(std::string_view bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

QJsonObject pathObject(const std::string& path) {
    const QString text = textOf(path);
    QJsonObject object{{"path", text}};
    const QByteArray bytes = QByteArray::fromStdString(path);
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
        array.append(QJsonObject{{"kind", textOf(nameOf(finding.kind))},
                                 {"stated", secondsValue(finding.stated)},
                                 {"found", secondsValue(finding.found)}});
    }
    object["findings"] = array;
}

QJsonObject missingObject(const Missing& missing, const ScanDetails& details) {
    QJsonObject object = pathObject(details.shownName(missing.path.native()));
    object["why"] = textOf(missing.why);
    return object;
}

QJsonObject measuredObject(const Measured& file, const ScanDetails& details, double speed) {
    QJsonObject object = pathObject(details.shownName(file.url.native()));
    object["seconds"] = file.seconds / speed;
    object["bytes"] = static_cast<qint64>(file.bytes);
    if (file.format.isKnown()) {
        object["format"] = textOf(file.format.text());
    }
    if (file.sampleRate > 0) {
        object["sampleRate"] = static_cast<qint64>(file.sampleRate);
    }
    if (file.channels > 0) {
        object["channels"] = file.channels;
    }
    return object;
}

/// Writes an object member by member, and an array in it element by element, as QJsonDocument writes the
/// whole.
class ObjectWriter {
public:
    explicit ObjectWriter(const Sink& out)
        : m_out(out) {}

    void member(const char* key, const QJsonValue& value) {
        begin(m_hasMember, "{\n");
        write(QJsonObject{{key, value}}, "{\n", "\n}\n");
    }

    /// `eachElement` is called with a function that takes them.
    template <typename EachElement>
    void array(std::string_view key, const EachElement& eachElement) {
        begin(m_hasMember, "{\n");
        m_out("    \"" + std::string(key) + "\": [\n");
        bool hasElement = false;
        eachElement([&](const QJsonObject& element) {
            begin(hasElement, "");
            write(QJsonObject{{"", QJsonArray{element}}}, "{\n    \"\": [\n", "\n    ]\n}\n");
        });
        m_out(hasElement ? "\n    ]" : "    ]");
    }

    void end() { m_out("\n}\n"); }

private:
    /// What comes before one of several: `first` before the first.
    void begin(bool& hasOne, std::string_view first) { m_out(std::exchange(hasOne, true) ? ",\n" : first); }

    /// Writes `object` without what it begins and ends with.
    void write(const QJsonObject& object, std::string_view head, std::string_view tail) {
        const QByteArray text = QJsonDocument(object).toJson();
        const auto length = static_cast<std::size_t>(text.size()) - head.size() - tail.size();
        m_out(std::string_view(text.constData(), static_cast<std::size_t>(text.size()))
                  .substr(head.size(), length));
    }

    const Sink& m_out;
    bool m_hasMember = false;
};

} // namespace

void jsonReport(const Sink& out, const std::string& status, const ScanSummary& summary,
                const ScanDetails& details, const CheckResults& checks, double speed) {
    const auto files = [&](bool areMissing, const auto& add) {
        for (std::size_t i = 0; i < details.files.size(); ++i) {
            const Measured& file = details.files[i];
            if ((file.seconds < 0) == areMissing) {
                QJsonObject object =
                    areMissing ? missingObject(missing(file), details) : measuredObject(file, details, speed);
                addFindings(object, checks, i);
                add(object);
            }
        }
    };
    const auto eachMissing = [&](const auto& causes) {
        return [&](const auto& add) {
            for (const auto& cause : causes) {
                add(missingObject(missing(cause), details));
            }
        };
    };
    ObjectWriter object(out);
    object.member("bytes", static_cast<qint64>(summary.bytes));
    object.member("fileCount", summary.fileCount);
    object.array("files", [&](const auto& add) { files(false, add); });
    object.member("formats", formatArray(summary.formats, speed));
    object.member("longestName", textOf(summary.longestName));
    object.member("longestSeconds", summary.longestSeconds / speed);
    object.member("schema", jsonSchema);
    object.member("seconds", summary.seconds / speed);
    object.array("skippedArchiveFiles", eachMissing(details.skippedArchives));
    object.member("skippedArchives", static_cast<qint64>(details.skippedArchives.size()));
    object.member("source", textOf(summary.source));
    object.member("speed", speed);
    object.member("status", textOf(status));
    object.member("unreadable", summary.unreadable);
    object.array("unreadableFiles", [&](const auto& add) { files(true, add); });
    object.array("unreadableFolders", eachMissing(details.unreadableFolders));
    object.end();
}

} // namespace velmora
