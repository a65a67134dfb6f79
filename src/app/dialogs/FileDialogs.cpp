#include "app/dialogs/FileDialogs.h"

#include "app/dialogs/DialogStyle.h"
#include "app/dialogs/OpenDialog.h"

#include <QFileDialog>
#include <QFileIconProvider>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <QWindow>

namespace velmora {

namespace {

namespace fs = std::filesystem;

fs::path bytesOf(const QString& path) {
    return {QFile::encodeName(path).toStdString()};
}

QString textOf(const fs::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

/// Chooses icons by the names of files. Qt's own provider reads the content of every file that is listed, on
/// the main thread: slow for a folder of thousands, endless where a read blocks.
class IconsByName : public QFileIconProvider {
public:
    using QFileIconProvider::icon;

    QIcon icon(const QFileInfo& file) const override { return icon(file.isDir() ? Folder : File); }

    QString type(const QFileInfo& file) const override {
        return QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchExtension).comment();
    }
};

/// Shows `dialog` over `window` until it is closed; whether it was confirmed.
bool run(QFileDialog& dialog, QWindow* window) {
    styleDialog(dialog);
    dialog.winId(); // makes its window, which needs a parent before it is shown
    dialog.windowHandle()->setTransientParent(window);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace

Paths chooseSources(QWindow* window) {
    IconsByName icons; // the dialog does not own them
    OpenDialog dialog;
    dialog.setIconProvider(&icons);
    dialog.setDirectory(QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    if (!run(dialog, window)) {
        return {};
    }
    Paths paths;
    for (const QString& path : dialog.chosen()) {
        paths.push_back(bytesOf(path));
    }
    return paths;
}

std::optional<fs::path> chooseZip(QWindow* window, const ZipProposal& proposal) {
    IconsByName icons;
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setIconProvider(&icons);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setWindowTitle(QStringLiteral("Save a zip of the %1 audio files").arg(proposal.fileCount));
    dialog.setNameFilter(QStringLiteral("Zip archives (*.zip)"));
    dialog.setDefaultSuffix(QStringLiteral("zip"));
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("Zip"));
    if (proposal.folder) {
        dialog.setDirectory(textOf(*proposal.folder));
    }
    dialog.selectFile(textOf(proposal.name));
    if (!run(dialog, window) || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return bytesOf(dialog.selectedFiles().constFirst());
}

} // namespace velmora
