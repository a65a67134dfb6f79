#pragma once

// Messages that the user must close before anything else, shown one after the other. The view shows the
// first, and calls `accept` or `dismiss` when one of its buttons is pressed.

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <deque>
#include <functional>
#include <optional>

namespace velmora {

/// A setting that an alert shows and the user turns on and off there, whatever button closes the alert.
struct AlertSwitch {
    QString title;
    bool on = false;
    std::function<void(bool on)> turned = {};
};

/// One alert. With `acceptTitle` and `dismissTitle` there are two buttons, the first the default; with an
/// empty `dismissTitle` there is one.
struct AlertText {
    QString title;
    QString body;
    QString acceptTitle = QStringLiteral("OK");
    QString dismissTitle = {};
    std::function<void()> accepted = {}; ///< what the first button does beyond closing; may be empty
    std::optional<AlertSwitch> setting = {};
};

class Alerts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program provides its alerts.")
    Q_PROPERTY(bool open READ open NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString body READ body NOTIFY changed)
    Q_PROPERTY(QString acceptTitle READ acceptTitle NOTIFY changed)
    Q_PROPERTY(QString dismissTitle READ dismissTitle NOTIFY changed)
    Q_PROPERTY(QString settingTitle READ settingTitle NOTIFY changed)
    Q_PROPERTY(bool settingOn READ settingOn NOTIFY settingChanged)

public:
    using QObject::QObject;

    /// Shows `alert` once those before it are closed.
    void show(AlertText alert);

    bool open() const { return !m_waiting.empty(); }

    QString title() const { return open() ? m_waiting.front().title : QString(); }

    QString body() const { return open() ? m_waiting.front().body : QString(); }

    QString acceptTitle() const { return open() ? m_waiting.front().acceptTitle : QString(); }

    QString dismissTitle() const { return open() ? m_waiting.front().dismissTitle : QString(); }

    /// Empty when the alert has no setting.
    QString settingTitle() const { return setting() ? setting()->title : QString(); }

    bool settingOn() const { return setting() && setting()->on; }

public slots:
    void accept();  ///< the default button, or Enter
    void dismiss(); ///< the other button, or Escape
    void turn();    ///< the setting on, or off again

signals:
    void changed(); ///< another alert is shown, or none
    void settingChanged();

private:
    const AlertSwitch* setting() const {
        return open() && m_waiting.front().setting ? &*m_waiting.front().setting : nullptr;
    }

    AlertText takeFirst();

    std::deque<AlertText> m_waiting;
};

} // namespace velmora
