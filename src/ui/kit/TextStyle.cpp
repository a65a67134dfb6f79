#include "ui/kit/TextStyle.h"

#include <QDir>
#include <QFontDatabase>
#include <QFontMetricsF>

namespace velmora {

QFont TextStyle::font() const {
    QFont font(monospaced ? QStringLiteral("JetBrains Mono") : QStringLiteral("Inter"));
    font.setPixelSize(size);
    font.setWeight(weight);
    font.setLetterSpacing(QFont::AbsoluteSpacing, tracking);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

double TextStyle::width(const QString& text) const {
    return text.isEmpty() ? 0 : QFontMetricsF(font()).horizontalAdvance(text) - tracking;
}

double TextStyle::lineHeight() const {
    return QFontMetricsF(font()).height();
}

double TextStyle::baseline() const {
    return QFontMetricsF(font()).ascent();
}

QString TextStyle::elided(const QString& text, double width, Qt::TextElideMode cut) const {
    return QFontMetricsF(font()).elidedText(text, cut, width + tracking);
}

void loadTypefaces() {
    const QDir folder(QStringLiteral(":/velmora/typefaces"));
    for (const QString& name : folder.entryList()) {
        QFontDatabase::addApplicationFont(folder.filePath(name));
    }
}

} // namespace velmora
