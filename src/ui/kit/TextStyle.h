#pragma once

// How a text is set. The typefaces are embedded in the program, so that it looks the same everywhere.

#include <QFont>
#include <QString>

namespace velmora {

struct TextStyle {
    int size = 11; ///< points of the window, not typographic points
    QFont::Weight weight = QFont::Normal;
    double tracking = 0; ///< points added between letters
    bool monospaced = false;

    QFont font() const;

    /// The width of `text` in points. Tracking is added between letters, not after the last one.
    double width(const QString& text) const;

    /// The height of a line, and the distance of the letters' baseline from its top, in points.
    double lineHeight() const;
    double baseline() const;

    /// `text`, its end or middle replaced by an ellipsis as far as needed to fit into `width` points.
    QString elided(const QString& text, double width, Qt::TextElideMode cut = Qt::ElideRight) const;

    bool operator==(const TextStyle&) const = default;
};

/// Makes the embedded typefaces known; once, after the application object exists.
void loadTypefaces();

} // namespace velmora
