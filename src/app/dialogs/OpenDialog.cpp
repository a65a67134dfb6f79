#include "app/dialogs/OpenDialog.h"

#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <array>

namespace velmora {

namespace {

/// The dialog's two views of a folder; one of them is shown.
constexpr std::array viewNames = {"listView", "treeView"};

} // namespace

OpenDialog::OpenDialog() {
    setOption(DontUseNativeDialog);
    setFileMode(ExistingFiles);
    setWindowTitle(QStringLiteral("Choose a folder, archive, or audio files"));
    setLabelText(Accept, QStringLiteral("Measure"));
    for (const char* name : viewNames) {
        auto* view = findChild<QAbstractItemView*>(QLatin1String(name));
        view->setSelectionMode(QAbstractItemView::ExtendedSelection);
        connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this, &OpenDialog::keepUsable,
                Qt::QueuedConnection);
    }
    connect(this, &QFileDialog::directoryEntered, this, &OpenDialog::keepUsable, Qt::QueuedConnection);
    QTimer::singleShot(0, this, &OpenDialog::keepUsable);
}

/// Qt's dialog for files disables its button, or renames it, while folders are selected.
void OpenDialog::keepUsable() {
    setLabelText(Accept, QStringLiteral("Measure"));
    if (auto* buttons = findChild<QDialogButtonBox*>()) {
        buttons->button(QDialogButtonBox::Open)->setEnabled(true);
    }
}

QStringList OpenDialog::selected() const {
    QStringList paths;
    for (const char* name : viewNames) {
        const auto* view = findChild<QAbstractItemView*>(QLatin1String(name));
        if (!view->isVisible()) {
            continue;
        }
        for (const QModelIndex& index : view->selectionModel()->selectedIndexes()) {
            if (index.column() == 0) {
                paths.append(index.data(QFileSystemModel::FilePathRole).toString());
            }
        }
    }
    return paths;
}

QStringList OpenDialog::typed() const {
    const auto* edit = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const QString text = edit == nullptr ? QString() : edit->text().trimmed();
    if (text.isEmpty()) {
        return {};
    }
    const QString path = directory().absoluteFilePath(text);
    return QFileInfo::exists(path) ? QStringList(path) : QStringList();
}

void OpenDialog::accept() {
    m_chosen = selected();
    if (m_chosen.isEmpty()) {
        m_chosen = typed();
    }
    if (m_chosen.isEmpty()) {
        m_chosen = QStringList(directory().absolutePath());
    }
    QDialog::accept(); // NOLINT(bugprone-parent-virtual-call): QFileDialog's own accepts files only
}

} // namespace velmora
