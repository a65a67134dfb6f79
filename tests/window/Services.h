#pragma once

// What a desktop offers on the session bus, as far as the program asks for it.

#include <QDBusConnection>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace velmora::test {

/// The file manager: records what it is asked to show. Present while this object lives.
class FileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    explicit FileManager(QDBusConnection bus);
    ~FileManager() override;

    QStringList shown; ///< URIs, in the order of the requests

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

} // namespace velmora::test
