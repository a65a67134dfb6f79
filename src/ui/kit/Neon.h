#pragma once

// The one palette. All colours of the window come from here; sRGB, opaque.

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class Neon : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QColor bgTop MEMBER bgTop CONSTANT)
    Q_PROPERTY(QColor bgMid MEMBER bgMid CONSTANT)
    Q_PROPERTY(QColor bgBottom MEMBER bgBottom CONSTANT)
    Q_PROPERTY(QColor violet MEMBER violet CONSTANT)
    Q_PROPERTY(QColor indigo MEMBER indigo CONSTANT)
    Q_PROPERTY(QColor brand MEMBER brand CONSTANT)
    Q_PROPERTY(QColor ink MEMBER ink CONSTANT)
    Q_PROPERTY(QColor inkDim READ shownInkDim NOTIFY contrastChanged)
    Q_PROPERTY(QColor alert MEMBER alert CONSTANT)

    /// Whether the user has asked for more contrast: secondary text and borders are lifted.
    Q_PROPERTY(bool highContrast MEMBER m_highContrast NOTIFY contrastChanged)
    Q_PROPERTY(double minBorderOpacity READ minBorderOpacity NOTIFY contrastChanged)

public:
    inline static const QColor bgTop = QColor::fromRgbF(0.055F, 0.035F, 0.11F);    ///< top of the backdrop
    inline static const QColor bgMid = QColor::fromRgbF(0.031F, 0.02F, 0.075F);    ///< middle of the backdrop
    inline static const QColor bgBottom = QColor::fromRgbF(0.012F, 0.008F, 0.04F); ///< its bottom
    inline static const QColor violet = QColor::fromRgbF(0.66F, 0.36F, 1);         ///< first accent
    inline static const QColor indigo = QColor::fromRgbF(0.4F, 0.33F, 1);          ///< second accent
    inline static const QColor brand = QColor::fromRgbF(0.243F, 0.176F, 1);        ///< the maker's accent
    inline static const QColor ink = QColor::fromRgbF(0.9F, 0.88F, 0.98F);         ///< main text
    inline static const QColor inkDim = QColor::fromRgbF(0.55F, 0.5F, 0.75F);      ///< secondary text
    inline static const QColor alert = QColor::fromRgbF(1, 0.541F, 0.31F);         ///< errors, empty results

    QColor shownInkDim() const { return m_highContrast ? inkDimLifted : inkDim; }

    /// No border that is seen is fainter than this, from 0 to 1.
    double minBorderOpacity() const { return m_highContrast ? 0.9 : 0; }

    /// `color`, its own opacity times `opacity`, from 0 to 1.
    static QColor faded(const QColor& color, double opacity);

signals:
    void contrastChanged();

private:
    inline static const QColor inkDimLifted = QColor::fromRgbF(0.8F, 0.77F, 0.94F); ///< with high contrast

    bool m_highContrast = false;
};

} // namespace velmora
