#pragma once

// What a desktop offers on the session bus, as far as the program asks for it.

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>

namespace velmora::test {

/// The file manager: records what it is asked to show. Present while this object lives.
class FileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    explicit FileManager(QDBusConnection bus);
    ~FileManager() override;

    QStringList shown;  ///< URIs, in the order of the requests
    QStringList tokens; ///< with which its windows may take the focus

public slots:
    // The bus knows it by this name.
    void ShowItems(const QStringList& uris, const QString& startupId);

private:
    QDBusConnection m_bus;
};

/// The portal through which confined programs hand over files. Present while this object lives.
class DocumentPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileTransfer")

public:
    explicit DocumentPortal(QDBusConnection bus);
    ~DocumentPortal() override;

    QMap<QString, QStringList> files; ///< paths by the key they are handed over under
    QStringList asked;                ///< keys, in the order of the requests

public slots:
    // The bus knows it by this name.
    QStringList RetrieveFiles(const QString& key, const QVariantMap& options);

private:
    QDBusConnection m_bus;
};

/// A question to the portal that it has not answered yet.
class PortalRequest : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    using QObject::QObject;

    bool closed = false; ///< taken back by the program

public slots:

    // The bus knows it by this name.
    void Close() { closed = true; }
};

/// The portal's dialogs for files: each answers at once, as it is told to. Present while this object lives.
class FileChooserPortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")

public:
    explicit FileChooserPortal(QDBusConnection bus);
    ~FileChooserPortal() override;

    enum class Way : std::uint8_t { answer, refuse, wait };

    /// Answers the question that waits.
    void answer();

    Way way = Way::answer;
    uint response = 0; ///< 0 chosen, 1 cancelled, 2 ended in some other way
    QString uri;       ///< what is chosen

    int asked = 0;
    PortalRequest request; ///< the last question, where it waits
    QString parent;        ///< its window
    QString title;
    QVariantMap options;

public slots:
    // The bus knows it by this name.
    QDBusObjectPath SaveFile(const QString& parentWindow, const QString& text, const QVariantMap& values);

private:
    QDBusConnection m_bus;
    QString m_question; ///< the object that stands for it
};

} // namespace velmora::test
