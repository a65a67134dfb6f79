#include "app/panels/Panels.h"

#include "app/panels/OpenPanel.h"
#include "app/panels/PanelStyle.h"

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

/// Knows files by their names alone. Qt's own icons look into every file that is listed, on the main thread:
/// slow for a folder of thousands, for ever where a read waits.
class IconsByName : public QFileIconProvider {
public:
    using QFileIconProvider::icon;

    QIcon icon(const QFileInfo& file) const override { return icon(file.isDir() ? Folder : File); }

    QString type(const QFileInfo& file) const override {
        return QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchExtension).comment();
    }
};

/// Shows `panel` over `window` until it is closed; whether it was confirmed.
bool run(QFileDialog& panel, QWindow* window) {
    stylePanel(panel);
    panel.winId(); // makes its window, which needs a parent before it is shown
    panel.windowHandle()->setTransientParent(window);
    return panel.exec() == QDialog::Accepted;
}

} // namespace

Paths chooseSources(QWindow* window) {
    IconsByName icons; // the panel does not own them
    OpenPanel panel;
    panel.setIconProvider(&icons);
    panel.setDirectory(QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    if (!run(panel, window)) {
        return {};
    }
    Paths paths;
    for (const QString& path : panel.chosen()) {
        paths.push_back(bytesOf(path));
    }
    return paths;
}

std::optional<fs::path> chooseZip(QWindow* window, const ZipProposal& proposal) {
    IconsByName icons;
    QFileDialog panel;
    panel.setOption(QFileDialog::DontUseNativeDialog);
    panel.setIconProvider(&icons);
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setWindowTitle(QStringLiteral("Save a zip of the %1 audio files").arg(proposal.fileCount));
    panel.setNameFilter(QStringLiteral("Zip archives (*.zip)"));
    panel.setDefaultSuffix(QStringLiteral("zip"));
    panel.setLabelText(QFileDialog::Accept, QStringLiteral("Zip"));
    if (proposal.folder) {
        panel.setDirectory(textOf(*proposal.folder));
    }
    panel.selectFile(textOf(proposal.name));
    if (!run(panel, window) || panel.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return bytesOf(panel.selectedFiles().constFirst());
}

} // namespace velmora
