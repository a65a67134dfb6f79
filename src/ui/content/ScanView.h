#pragma once

// The state of the window as the texts and colours that its views show. Every text is made here; the views
// only place them and bind to them.

#include "ui/content/ScanState.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <map>

namespace velmora {

class ScanView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program provides the state of its window.")

    Q_PROPERTY(bool idle READ idle NOTIFY phaseChanged)
    Q_PROPERTY(bool scanning READ scanning NOTIFY phaseChanged)
    Q_PROPERTY(bool done READ done NOTIFY phaseChanged)
    Q_PROPERTY(bool empty READ empty NOTIFY phaseChanged)
    Q_PROPERTY(QString pillText READ pillText NOTIFY phaseChanged)
    Q_PROPERTY(QColor pillTint READ pillTint NOTIFY phaseChanged)
    Q_PROPERTY(double intensity READ intensity NOTIFY phaseChanged)

    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
    Q_PROPERTY(QString scanningStatus READ scanningStatus NOTIFY statusChanged)

    Q_PROPERTY(QString countText READ countText NOTIFY countChanged)
    Q_PROPERTY(double progress READ progress NOTIFY countChanged)
    Q_PROPERTY(bool reading READ reading NOTIFY readingChanged)
    Q_PROPERTY(QString unpackingText READ unpackingText NOTIFY unpackingChanged)

    Q_PROPERTY(QString source READ source NOTIFY summaryChanged)
    Q_PROPERTY(QString totalClock READ totalClock NOTIFY summaryChanged)
    Q_PROPERTY(QString totalWords READ totalWords NOTIFY summaryChanged)
    Q_PROPERTY(QString countLine READ countLine NOTIFY summaryChanged)
    Q_PROPERTY(QString unreadableLine READ unreadableLine NOTIFY summaryChanged)

    Q_PROPERTY(QString missingLine READ missingLine NOTIFY summaryChanged)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY titleChanged)

    Q_PROPERTY(QString zipText READ zipText NOTIFY zipChanged)
    Q_PROPERTY(QColor zipTint READ zipTint NOTIFY zipChanged)
    Q_PROPERTY(double zipTracking READ zipTracking NOTIFY zipChanged)
    Q_PROPERTY(bool zipWriting READ zipWriting NOTIFY zipChanged)
    Q_PROPERTY(bool zipWorking READ zipWorking NOTIFY zipChanged)
    Q_PROPERTY(bool zipSaved READ zipSaved NOTIFY zipChanged)

    Q_PROPERTY(QString copyRuntimeTitle READ copyRuntimeTitle NOTIFY flashChanged)
    Q_PROPERTY(QString copyFileListTitle READ copyFileListTitle NOTIFY flashChanged)
    Q_PROPERTY(bool targeted READ targeted NOTIFY targetedChanged)

    Q_PROPERTY(velmora::ScanView* lastScanning READ lastScanning CONSTANT)
    Q_PROPERTY(velmora::ScanView* lastDone READ lastDone CONSTANT)
    Q_PROPERTY(velmora::ScanView* lastEmpty READ lastEmpty CONSTANT)

public:
    /// The copy button that says "COPIED" at present.
    enum class Copied : std::uint8_t { nothing, total, list };

    /// How long a copy button says "COPIED", in milliseconds.
    static constexpr int flashMilliseconds = 1400;

    explicit ScanView(QObject* parent = nullptr);

    /// Shows `model` and every change of it; the count of measured files, which changes far more often than
    /// a window is drawn, once a frame. `model` outlives the view.
    explicit ScanView(const ScanModel& model, QObject* parent = nullptr);

    /// Shows `state`; announces only what differs from what was shown.
    void show(ScanState state);

    /// Makes `button` say "COPIED" for `flashMilliseconds`, or until another copy button says it.
    void flash(Copied button);

    Copied flashing() const { return m_flashing; }

    bool idle() const { return m_state.phase == ScanModel::Phase::idle; }

    bool scanning() const { return m_state.phase == ScanModel::Phase::scanning; }

    bool done() const { return m_state.phase == ScanModel::Phase::done; }

    bool empty() const { return m_state.phase == ScanModel::Phase::empty; }

    QString pillText() const;
    QColor pillTint() const;

    /// The strength of the scenery's motion, from 0 to 1.
    double intensity() const;

    QString status() const;

    /// `status`; three dots while it is empty.
    QString scanningStatus() const;

    QString countText() const; ///< "31 / 48"

    double progress() const { return m_state.progress; }

    /// Whether a scan has not counted anything yet.
    bool reading() const { return scanning() && m_state.found == 0; }

    QString source() const;
    QString totalClock() const;     ///< "01:37:12"
    QString totalWords() const;     ///< "1 hr  37 min  12 sec"
    QString countLine() const;      ///< "14 FILES · 1.29 GB"
    QString unreadableLine() const; ///< "2 files could not be read"; empty when all could

    QString missingLine() const; ///< "set.zip: archive is damaged"; empty when all could, or some audio was

    /// "MUSIC – 101:02:05" once there is a total, else "Velmora".
    QString windowTitle() const;

    QString zipText() const; ///< empty while no packing was asked for
    QColor zipTint() const;
    double zipTracking() const;

    bool zipWorking() const { return std::holds_alternative<ZipWorking>(m_state.zip); }

    /// "Unpacking Live Set.zip"; empty while no archive is unpacked.
    QString unpackingText() const;

    /// Whether all files are packed but the archive is not yet complete.
    bool zipWriting() const;

    bool zipSaved() const { return std::holds_alternative<ZipDone>(m_state.zip); }

    QString copyRuntimeTitle() const;
    QString copyFileListTitle() const;

    /// Whether a drag that carries files hovers over the window.
    bool targeted() const { return m_targeted; }

    void setTargeted(bool targeted);

    /// The scan as it was when it last was in that phase: what a panel still shows while it fades away. The
    /// present scan while it is in that phase. Lives as long as this.
    ScanView* lastScanning() { return lastWhile(ScanModel::Phase::scanning); }

    ScanView* lastDone() { return lastWhile(ScanModel::Phase::done); }

    ScanView* lastEmpty() { return lastWhile(ScanModel::Phase::empty); }

signals:
    void phaseChanged();
    void statusChanged();
    void countChanged();
    void readingChanged();
    void unpackingChanged();
    void summaryChanged();
    void titleChanged();
    void zipChanged();
    void flashChanged();
    void targetedChanged();

private:
    /// How long a new count waits for later ones: a frame.
    static constexpr int countMilliseconds = 16;

    ScanView* lastWhile(ScanModel::Phase phase);

    ScanState m_state;
    std::map<ScanModel::Phase, ScanView*> m_last; ///< what `lastWhile` has made so far
    QTimer m_countShows;
    Copied m_flashing = Copied::nothing;
    bool m_targeted = false;
};

} // namespace velmora
