#include "app/ScanNews.h"

#include "scan/ScanModel.h"
#include "system/FileName.h"
#include "ui/content/ScanView.h"
#include "ui/kit/ShownName.h"

#include <QWindow>

#include <utility>
#include <variant>

namespace velmora {

namespace {

QString filesText(int count) {
    return QStringLiteral("%1 file%2").arg(count).arg(QLatin1String(count == 1 ? "" : "s"));
}

/// On X11 Qt learns that a window has lost the focus a tenth of a second after it was minimised.
bool isInFront(const QWindow& window) {
    return window.isActive() && !window.windowStates().testFlag(Qt::WindowMinimized);
}

Notice noticeOfScan(const ScanModel& model, const ScanView& view) {
    if (model.phase() == ScanModel::Phase::done) {
        const QString unreadable = view.unreadableLine();
        return {view.windowTitle(), filesText(model.summary().fileCount) +
                                        (unreadable.isEmpty() ? QString() : '\n' + unreadable)};
    }
    const QString nothing =
        model.found() > 0 ? QStringLiteral("No readable audio") : QStringLiteral("No audio found");
    const QString missing = view.missingLine();
    return {view.source(), missing.isEmpty() ? nothing : nothing + '\n' + missing};
}

} // namespace

ScanNews::ScanNews(const ScanModel& model, const ScanView& view, Clock now)
    : m_model(model)
    , m_view(view)
    , m_now(std::move(now)) {
    connect(&model, &ScanModel::processedChanged, this, &ScanNews::showProgress);
    connect(&model, &ScanModel::foundChanged, this, &ScanNews::showProgress);
    connect(&model, &ScanModel::phaseChanged, this, &ScanNews::followPhase);
    connect(&model, &ScanModel::zipStateChanged, this, &ScanNews::followZip);
    connect(&m_notifier, &Notifier::pressed, this, &ScanNews::windowWanted);
    connect(&m_notifier, &Notifier::buttonPressed, this, &ScanNews::zipWanted);
}

void ScanNews::setWindow(QWindow* window) {
    m_window = window;
    const auto look = [this, window] {
        if (isInFront(*window)) {
            m_notifier.withdraw();
        }
    };
    connect(window, &QWindow::activeChanged, this, look);
    connect(window, &QWindow::windowStateChanged, this, look);
}

void ScanNews::followPhase() {
    switch (m_model.phase()) {
    case ScanModel::Phase::scanning:
        m_scanStarted = m_now();
        m_progress.show(0); // the counts of the scan before are still there
        m_notifier.withdraw();
        break;
    case ScanModel::Phase::idle:
        showProgress();
        m_notifier.withdraw();
        break;
    case ScanModel::Phase::done:
    case ScanModel::Phase::empty:
        showProgress();
        if (m_now() - m_scanStarted > longScan) {
            tell(noticeOfScan(m_model, m_view));
        }
        break;
    }
}

void ScanNews::followZip() {
    showProgress();
    const ZipState& zip = m_model.zipState();
    if (const auto* working = std::get_if<ZipWorking>(&zip)) {
        m_zipFiles = working->total;
        m_inhibitor.hold(QStringLiteral("A zip archive is being written"));
        return;
    }
    m_inhibitor.release();
    if (const auto* saved = std::get_if<ZipDone>(&zip)) {
        const QString name = shownName(lastComponent(saved->path));
        tell({QStringLiteral("Zip saved \u2013 ") + name, filesText(m_zipFiles),
              QStringLiteral("Show in folder")});
    } else if (const auto* failed = std::get_if<ZipFailed>(&zip)) {
        tell({QStringLiteral("Zip failed"), QString::fromStdString(failed->text)});
    }
}

void ScanNews::tell(const Notice& notice) {
    if (m_window != nullptr && !isInFront(*m_window)) {
        m_notifier.show(notice);
    }
}

void ScanNews::showProgress() {
    m_progress.show(progress());
}

std::optional<double> ScanNews::progress() const {
    if (m_model.phase() == ScanModel::Phase::scanning) {
        return m_model.progress();
    }
    if (const auto* working = std::get_if<ZipWorking>(&m_model.zipState())) {
        return static_cast<double>(working->done) / working->total;
    }
    return std::nullopt;
}

} // namespace velmora
