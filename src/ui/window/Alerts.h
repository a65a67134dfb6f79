#pragma once

// Messages that the user must close before anything else, shown one after the other. The view shows the
// first, and calls `accept` or `dismiss` when one of its buttons is pressed.

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <deque>
#include <functional>

namespace velmora {

/// One alert. With `acceptTitle` and `dismissTitle` there are two buttons, the first the default; with an
/// empty `dismissTitle` there is one.
struct AlertText {
    QString title;
    QString body;
    QString acceptTitle = QStringLiteral("OK");
    QString dismissTitle = {};
    std::function<void()> accepted = {}; ///< what the first button does beyond closing; may be empty
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

public:
    using QObject::QObject;

    /// Shows `alert` once those before it are closed.
    void show(AlertText alert);

    bool open() const { return !m_waiting.empty(); }

    QString title() const { return open() ? m_waiting.front().title : QString(); }

    QString body() const { return open() ? m_waiting.front().body : QString(); }

    QString acceptTitle() const { return open() ? m_waiting.front().acceptTitle : QString(); }

    QString dismissTitle() const { return open() ? m_waiting.front().dismissTitle : QString(); }

public slots:
    void accept();  ///< the default button, or Enter
    void dismiss(); ///< the other button, or Escape

signals:
    void changed();

private:
    AlertText takeFirst();

    std::deque<AlertText> m_waiting;
};

} // namespace velmora
