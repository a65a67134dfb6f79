#include "tests/window/Services.h"

#include <QDBusError>
#include <QDBusMessage>

#include <gtest/gtest.h>

#include <utility>

namespace velmora::test {

namespace {

const QString fileManager = "org.freedesktop.FileManager1";
const QString portal = "org.freedesktop.portal.Desktop";
const QString documents = "org.freedesktop.portal.Documents";

void offer(QDBusConnection& bus, const QString& service, const QString& path, QObject* object) {
    EXPECT_TRUE(bus.registerObject(path, object, QDBusConnection::ExportAllSlots));
    EXPECT_TRUE(bus.registerService(service));
}

} // namespace

FileManager::FileManager(QDBusConnection bus)
    : m_bus(std::move(bus)) {
    offer(m_bus, fileManager, "/org/freedesktop/FileManager1", this);
}

FileManager::~FileManager() {
    m_bus.unregisterService(fileManager);
}

void FileManager::ShowItems(const QStringList& uris, const QString& startupId) {
    shown += uris;
    tokens += startupId;
}

DocumentPortal::DocumentPortal(QDBusConnection bus)
    : m_bus(std::move(bus)) {
    offer(m_bus, documents, "/org/freedesktop/portal/documents", this);
}

DocumentPortal::~DocumentPortal() {
    m_bus.unregisterService(documents);
}

QStringList DocumentPortal::RetrieveFiles(const QString& key, const QVariantMap& /*options*/) {
    asked += key;
    return files.value(key);
}

FileChooserPortal::FileChooserPortal(QDBusConnection bus)
    : m_bus(std::move(bus)) {
    offer(m_bus, portal, "/org/freedesktop/portal/desktop", this);
}

FileChooserPortal::~FileChooserPortal() {
    m_bus.unregisterService(portal);
    m_bus.unregisterObject("/org/freedesktop/portal/desktop");
}

QDBusObjectPath FileChooserPortal::SaveFile(const QString& parentWindow, const QString& text,
                                            const QVariantMap& values) {
    ++asked;
    parent = parentWindow;
    title = text;
    options = values;
    if (way == Way::refuse) {
        sendErrorReply(QDBusError::UnknownMethod, "there are no dialogs here");
        return {};
    }
    m_question = "/org/freedesktop/portal/desktop/request/" + message().service().mid(1).replace('.', '_') +
                 "/" + values.value("handle_token").toString();
    if (way == Way::wait) {
        m_bus.registerObject(m_question, &request, QDBusConnection::ExportAllSlots);
    } else { // before the call returns
        answer();
    }
    return QDBusObjectPath(m_question);
}

void FileChooserPortal::answer() {
    QDBusMessage signal =
        QDBusMessage::createSignal(m_question, "org.freedesktop.portal.Request", "Response");
    m_bus.send(signal << response << QVariantMap{{"uris", QStringList(uri)}});
}

} // namespace velmora::test
