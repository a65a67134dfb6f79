#include "ui/details/Details.h"

#include "records/DisplayFormat.h"
#include "scan/ScanModel.h"
#include "ui/details/ScanRows.h"
#include "ui/kit/TextStyle.h"

#include <utility>

namespace velmora {

namespace {

constexpr double maxLabel = 240; ///< points of a chip

QVariantMap chip(const QString& label, double seconds) {
    const TextStyle style{.size = 9, .weight = QFont::Bold, .tracking = 1.5};
    return {{"label", style.elided(label, maxLabel)},
            {"value", QString::fromStdString(hms(displayable(seconds)))}};
}

QString titleOf(Details::List list) {
    switch (list) {
    case Details::Files:
        return QStringLiteral("FILES");
    case Details::Folders:
        return QStringLiteral("FOLDERS");
    case Details::Unreadable:
        return QStringLiteral("UNREADABLE");
    }
    return {};
}

} // namespace

Details::Details(QObject* parent)
    : QObject(parent) {
    connect(&m_rows, &RowsModel::copied, this, &Details::copied);
}

Details::Details(const ScanModel& model, QObject* parent)
    : Details(parent) {
    connect(&model, &ScanModel::phaseChanged, this, [this, &model](ScanModel::Phase phase) {
        const bool hasEnded = phase == ScanModel::Phase::done || phase == ScanModel::Phase::empty;
        show(hasEnded ? model.sharedDetails() : nullptr, model.summary());
    });
}

void Details::show(std::shared_ptr<const ScanDetails> details, const ScanSummary& summary) {
    close();
    m_details = std::move(details);
    m_summary = m_details ? summary : ScanSummary();
    emit availableChanged();
}

bool Details::holds(List list) const {
    switch (list) {
    case Files:
        return m_details && !m_details->files.empty();
    case Folders:
        return m_summary.fileCount > 0;
    case Unreadable:
        return m_details && (m_summary.unreadable > 0 || !m_details->unreadableFolders.empty());
    }
    return false;
}

QVariantList Details::lists() const {
    QVariantList lists;
    for (const List list : {Files, Folders, Unreadable}) {
        if (holds(list)) {
            lists << QVariantMap{{"list", int{list}}, {"title", titleOf(list)}};
        }
    }
    return lists;
}

QVariantList Details::chips() const {
    QVariantList chips;
    if (!m_summary.longestName.empty()) {
        chips << chip(QStringLiteral("LONGEST \u00b7 ") + QString::fromStdString(m_summary.longestName),
                      m_summary.longestSeconds);
    }
    for (const FormatStat& format : m_summary.formats) {
        const QString name =
            format.ext.empty() ? QStringLiteral("NO EXTENSION") : QString::fromStdString(format.ext);
        chips << chip(QStringLiteral("%1 \u00b7 %2").arg(name).arg(format.count), format.seconds);
    }
    return chips;
}

void Details::openOn(List list) {
    if (!available()) {
        return;
    }
    m_list = holds(list) ? list : static_cast<List>(lists().constFirst().toMap()["list"].toInt());
    m_open = true;
    switch (m_list) {
    case Files:
        m_rows.show(fileRows(m_details));
        break;
    case Folders:
        m_rows.show(folderRows(m_details, m_summary.dropped));
        break;
    case Unreadable:
        m_rows.show(missingRows(m_details));
        break;
    }
    emit openChanged();
}

void Details::close() {
    if (m_open) {
        m_open = false;
        m_rows.show({});
        emit openChanged();
    }
}

} // namespace velmora
