#pragma once

// Whether the user has asked the desktop for less motion.

#include <QObject>
#include <QString>

class QDBusVariant;

namespace velmora {

/// Follows the desktop's setting through the settings portal: GNOME's "enable-animations", and KDE's
/// animation speed. Without a portal nothing is reduced. Main thread.
class ReducedMotion : public QObject {
    Q_OBJECT

public:
    /// Asks the portal; the answer comes later, as `changed`.
    explicit ReducedMotion(QObject* parent = nullptr);

    /// Whether things may move.
    bool animated() const { return m_animated; }

signals:
    void changed();

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void ask(const QString& group, const QString& key);

    bool m_animated = true;
};

} // namespace velmora
