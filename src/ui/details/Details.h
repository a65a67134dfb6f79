#pragma once

// "Which files?": what a finished scan found, as the details view shows it. Its lists are made when it is
// opened and freed when it is closed.

#include "records/PathList.h"
#include "scan/ScanDetails.h"
#include "ui/details/RowsModel.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <string>
#include <vector>

namespace velmora {

class ScanModel;

class Details : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program provides the details of its scan.")

    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(bool open READ isOpen NOTIFY openChanged)
    Q_PROPERTY(velmora::Details::List list READ list NOTIFY openChanged)
    Q_PROPERTY(QVariantList lists READ lists NOTIFY availableChanged)
    Q_PROPERTY(QVariantList chips READ chips NOTIFY availableChanged)
    Q_PROPERTY(velmora::RowsModel* rows READ rows CONSTANT)

public:
    enum List : int { Files, Folders, Unreadable };
    Q_ENUM(List)

    /// Nothing to show.
    explicit Details(QObject* parent = nullptr);

    /// Shows what `model` has found, once it has. `model` outlives it.
    explicit Details(const ScanModel& model, QObject* parent = nullptr);

    /// From here on these are the details of `summary`; null: none. The view closes.
    void show(std::shared_ptr<const ScanDetails> details, const ScanSummary& summary);

    /// Whether there is anything to open.
    bool available() const { return !lists().isEmpty(); }

    bool isOpen() const { return m_open; }

    List list() const { return m_list; }

    /// The lists that hold anything: of each `list`, `title`.
    QVariantList lists() const;

    /// The longest file, then the formats, the one that plays longest first: of each `label` and `value`.
    QVariantList chips() const;

    RowsModel* rows() { return &m_rows; }

public slots:
    /// Opens the view on the list of that name, or on the first where it holds nothing. Nothing happens where
    /// nothing is available.
    void openOn(velmora::Details::List list);

    void close();

signals:
    /// The text that `rows()` made for a copy.
    void copied(const QByteArray& text);
    void availableChanged();
    void openChanged();

private:
    bool holds(List list) const;

    std::shared_ptr<const ScanDetails> m_details;
    ScanSummary m_summary;
    bool m_open = false;
    List m_list = Files;
    RowsModel m_rows;
};

} // namespace velmora
