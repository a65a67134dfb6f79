#pragma once

// What the user has asked the desktop for: less motion, more contrast.

#include <QDBusMessage> // the slot needs the whole type
#include <QObject>
#include <QString>

class QVariant;

namespace velmora {

/// Follows the desktop's settings through the settings portal. Its own keys count first, "reduced-motion" and
/// "contrast"; where motion is not reduced by them, GNOME's "enable-animations" and KDE's animation speed.
/// Without a portal nothing is reduced, and the contrast is the usual one. Main thread.
class Appearance : public QObject {
    Q_OBJECT

public:
    /// Asks the portal; its answers come later, as `changed`.
    explicit Appearance(QObject* parent = nullptr);

    /// Whether things may move.
    bool animated() const { return !m_reducedMotion && m_gnomeAnimates && m_kdeAnimates; }

    bool highContrast() const { return m_highContrast; }

signals:
    void changed();

private slots:
    void settingChanged(const QDBusMessage& signal);

private:
    void ask(const QString& group, const QString& key);
    void take(const QString& group, const QString& key, const QVariant& value);

    bool m_reducedMotion = false;
    bool m_gnomeAnimates = true;
    bool m_kdeAnimates = true;
    bool m_highContrast = false;
};

} // namespace velmora
