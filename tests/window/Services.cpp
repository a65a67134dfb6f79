#include "tests/window/Services.h"

#include <gtest/gtest.h>

#include <utility>

namespace velmora::test {

namespace {

const QString fileManager = "org.freedesktop.FileManager1";
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

void FileManager::ShowItems(const QStringList& uris, const QString& /*startupId*/) {
    shown += uris;
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

} // namespace velmora::test
