#pragma once

// The desktop's own save dialog, which its portal shows (org.freedesktop.portal.FileChooser). A
// program in a sandbox has no other way to a file outside of it.

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <filesystem>
#include <functional>
#include <optional>

class QWindow;

namespace velmora {

/// Main thread. One question at a time, each answered later.
class PortalSave : public QObject {
    Q_OBJECT

public:
    struct Question {
        QString title;
        QString acceptLabel; ///< of the button that confirms
        QString name;        ///< which the dialog proposes
        std::optional<std::filesystem::path> folder = {};
        QString kind;    ///< of the files shown, in words
        QString pattern; ///< of their names, such as "*.zip"
    };

    /// One of these is called, and neither when the user cancels.
    struct Answer {
        std::function<void(const std::filesystem::path&)> chosen; ///< what is there may be replaced
        std::function<void()> failed;                             ///< there is no dialog, or it broke
    };

    explicit PortalSave(QObject* parent = nullptr);

    /// Asks over `window`, which may be null, in place of what was asked before. The dialog counts as absent
    /// when the portal does not take the question within 5 seconds.
    void ask(const QWindow* window, const Question& question, Answer answer);

    /// Takes the question back.
    void close();

private slots:
    void takeResponse(uint response, const QVariantMap& results);

private:
    void end();
    void fail();

    QDBusServiceWatcher m_portal; ///< tells when the portal has gone
    QString m_request;            ///< the object that stands for the question; empty while nothing is asked
    Answer m_answer;
};

} // namespace velmora
