#include "app/dialogs/DialogStyle.h"

#include "ui/kit/Neon.h"

#include <QDialog>
#include <QFont>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>

namespace velmora {

namespace {

QPalette neonPalette() {
    const QColor raised = QColor::fromRgbF(0.11F, 0.08F, 0.2F); // between the backdrop's top and the accents
    QPalette palette(raised, Neon::bgTop);
    palette.setColor(QPalette::WindowText, Neon::ink);
    palette.setColor(QPalette::Base, Neon::bgMid);
    palette.setColor(QPalette::AlternateBase, Neon::bgTop);
    palette.setColor(QPalette::Text, Neon::ink);
    palette.setColor(QPalette::ButtonText, Neon::ink);
    palette.setColor(QPalette::PlaceholderText, Neon::inkDim);
    palette.setColor(QPalette::Highlight, Neon::indigo);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, Neon::bgTop);
    palette.setColor(QPalette::ToolTipText, Neon::ink);
    palette.setColor(QPalette::Link, Neon::violet);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText}) {
        palette.setColor(QPalette::Disabled, role, Neon::faded(Neon::inkDim, 0.6));
    }
    return palette;
}

} // namespace

void styleDialog(QDialog& dialog) {
    QStyle* style = QStyleFactory::create(QStringLiteral("Fusion"));
    style->setParent(&dialog);
    const QPalette palette = neonPalette();
    dialog.setStyle(style);
    dialog.setPalette(palette);
    dialog.setFont(QFont(QStringLiteral("Inter"), 10));
    for (QWidget* part : dialog.findChildren<QWidget*>()) {
        part->setStyle(style);
        part->setPalette(palette);
    }
    dialog.resize(820, 520);
}

} // namespace velmora
