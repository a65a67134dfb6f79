#include "ui/content/ScanView.h"

#include "records/DisplayFormat.h"
#include "system/FileName.h"
#include "ui/kit/Neon.h"
#include "ui/kit/ShownName.h"

#include <QTimer>

#include <tuple>
#include <utility>
#include <variant>

namespace velmora {

namespace {

/// Bytes as text; what is not UTF-8 becomes U+FFFD.
QString text(const std::string& bytes) {
    return QString::fromStdString(bytes);
}

QString copyTitle(bool copied, const char* title) {
    return QString::fromLatin1(copied ? "COPIED" : title);
}

auto counts(const ScanState& state) {
    return std::tie(state.processed, state.found, state.progress);
}

auto summary(const ScanState& state) {
    return std::tie(state.source, state.seconds, state.fileCount, state.bytes, state.unreadable,
                    state.missing);
}

struct ZipLine {
    QString text;
    QColor tint;
    double tracking = 1.5;
};

ZipLine line(const ZipIdle& /*idle*/) {
    return {};
}

ZipLine line(const ZipWorking& working) {
    return {QStringLiteral("ZIPPING %1/%2").arg(working.done).arg(working.total), Neon::indigo};
}

ZipLine line(const ZipDone& saved) {
    return {QStringLiteral("ZIP SAVED \u00B7 ") + text(lastComponent(saved.path)), Neon::violet};
}

ZipLine line(const ZipFailed& failed) {
    return {QStringLiteral("ZIP FAILED \u00B7 ") + text(failed.text), Neon::alert, 1};
}

ZipLine zipLine(const ZipState& zip) {
    return std::visit([](const auto& state) { return line(state); }, zip);
}

} // namespace

ScanView::ScanView(QObject* parent)
    : QObject(parent) {}

ScanView::ScanView(const ScanModel& model, QObject* parent)
    : QObject(parent)
    , m_state(ScanState::of(model)) {
    const auto refresh = [this, &model] { show(ScanState::of(model)); };
    connect(&model, &ScanModel::phaseChanged, this, refresh);
    connect(&model, &ScanModel::summaryChanged, this, refresh);
    connect(&model, &ScanModel::foundChanged, this, refresh);
    connect(&model, &ScanModel::statusChanged, this, refresh);
    connect(&model, &ScanModel::unpackingChanged, this, refresh);
    connect(&model, &ScanModel::zipStateChanged, this, refresh);

    m_countShows.setSingleShot(true);
    m_countShows.setTimerType(Qt::PreciseTimer);
    m_countShows.setInterval(countMilliseconds);
    connect(&m_countShows, &QTimer::timeout, this, refresh);
    connect(&model, &ScanModel::processedChanged, &m_countShows, [this] {
        if (!m_countShows.isActive()) {
            m_countShows.start();
        }
    });
}

void ScanView::show(ScanState state) {
    const bool wasReading = reading();
    std::swap(m_state, state);
    if (const auto last = m_last.find(m_state.phase); last != m_last.end()) {
        last->second->show(m_state);
    }
    if (state.phase != m_state.phase) {
        emit phaseChanged();
    }
    if (state.phase != m_state.phase || summary(state) != summary(m_state)) {
        emit titleChanged();
    }
    if (state.status != m_state.status) {
        emit statusChanged();
    }
    if (counts(state) != counts(m_state)) {
        emit countChanged();
    }
    if (state.unpacking != m_state.unpacking) {
        emit unpackingChanged();
    }
    if (reading() != wasReading) {
        emit readingChanged();
    }
    if (summary(state) != summary(m_state)) {
        emit summaryChanged();
    }
    if (state.zip != m_state.zip) {
        emit zipChanged();
    }
}

void ScanView::flash(Copied button) {
    m_flashing = button;
    emit flashChanged();
    QTimer::singleShot(flashMilliseconds, Qt::PreciseTimer, this, [this, button] {
        if (m_flashing == button) {
            m_flashing = Copied::nothing;
            emit flashChanged();
        }
    });
}

QString ScanView::pillText() const {
    switch (m_state.phase) {
    case ScanModel::Phase::idle:
        return QStringLiteral("STANDBY");
    case ScanModel::Phase::scanning:
        return QStringLiteral("SCANNING");
    case ScanModel::Phase::done:
        return QStringLiteral("READY");
    case ScanModel::Phase::empty:
        return QStringLiteral("EMPTY");
    }
    return {};
}

QColor ScanView::pillTint() const {
    switch (m_state.phase) {
    case ScanModel::Phase::idle:
        return Neon::inkDim;
    case ScanModel::Phase::scanning:
        return Neon::indigo;
    case ScanModel::Phase::done:
        return Neon::violet;
    case ScanModel::Phase::empty:
        return Neon::alert;
    }
    return {};
}

double ScanView::intensity() const {
    switch (m_state.phase) {
    case ScanModel::Phase::idle:
        return 0.44;
    case ScanModel::Phase::scanning:
        return 1.0;
    case ScanModel::Phase::done:
        return 0.74;
    case ScanModel::Phase::empty:
        return 0.3;
    }
    return {};
}

QString ScanView::status() const {
    return text(m_state.status);
}

QString ScanView::scanningStatus() const {
    return m_state.status.empty() ? QStringLiteral("\u00B7 \u00B7 \u00B7") : status();
}

QString ScanView::countText() const {
    return QStringLiteral("%1 / %2").arg(m_state.processed).arg(m_state.found);
}

QString ScanView::source() const {
    return shownName(m_state.source);
}

QString ScanView::totalClock() const {
    return text(hms(displayable(m_state.seconds)));
}

QString ScanView::totalWords() const {
    return text(longForm(displayable(m_state.seconds)));
}

QString ScanView::countLine() const {
    return QStringLiteral("%1 FILE%2 \u00B7 %3")
        .arg(m_state.fileCount)
        .arg(QLatin1String(m_state.fileCount == 1 ? "" : "S"), text(prettyBytes(m_state.bytes)).toUpper());
}

QString ScanView::unreadableLine() const {
    if (m_state.unreadable <= 0) {
        return {};
    }
    return QStringLiteral("%1 file%2 could not be read")
        .arg(m_state.unreadable)
        .arg(QLatin1String(m_state.unreadable == 1 ? "" : "s"));
}

QString ScanView::missingLine() const {
    return shownName(m_state.missing);
}

QString ScanView::windowTitle() const {
    return done() ? source() + QStringLiteral(" \u2013 ") + totalClock() : QStringLiteral("Velmora");
}

QString ScanView::zipText() const {
    return zipLine(m_state.zip).text;
}

QColor ScanView::zipTint() const {
    return zipLine(m_state.zip).tint;
}

double ScanView::zipTracking() const {
    return zipLine(m_state.zip).tracking;
}

QString ScanView::unpackingText() const {
    return m_state.unpacking.empty() ? QString() : QStringLiteral("Unpacking ") + text(m_state.unpacking);
}

bool ScanView::zipWriting() const {
    const auto* working = std::get_if<ZipWorking>(&m_state.zip);
    return working != nullptr && working->done == working->total;
}

ScanView* ScanView::lastWhile(ScanModel::Phase phase) {
    ScanView*& last = m_last[phase];
    if (last == nullptr) {
        last = new ScanView(this);
        if (m_state.phase == phase) {
            last->show(m_state);
        }
    }
    return last;
}

QString ScanView::copyRuntimeTitle() const {
    return copyTitle(m_flashing == Copied::total, "COPY RUNTIME");
}

QString ScanView::copyFileListTitle() const {
    return copyTitle(m_flashing == Copied::list, "COPY FILE LIST");
}

void ScanView::setTargeted(bool targeted) {
    if (m_targeted != targeted) {
        m_targeted = targeted;
        emit targetedChanged();
    }
}

} // namespace velmora
