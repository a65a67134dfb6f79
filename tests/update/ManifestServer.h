#pragma once

// A real server of manifests on this machine.

#include <QProcess>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace velmora::test {

/// Listens from construction to `stop` or destruction. With a certificate and its key, both files, it speaks
/// HTTPS.
class ManifestServer {
public:
    explicit ManifestServer(const QStringList& certificateAndKey = {}) {
        m_process.start("python3", QStringList(MANIFEST_SERVER) + certificateAndKey);
        EXPECT_TRUE(m_process.waitForReadyRead(30000)) << "the server does not start";
        m_port = m_process.readLine().trimmed();
    }

    ManifestServer(const ManifestServer&) = delete;
    ManifestServer& operator=(const ManifestServer&) = delete;

    ~ManifestServer() { stop(); }

    /// "127.0.0.1" and the port.
    QString authority() const { return "127.0.0.1:" + m_port; }

    void stop() {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
    QString m_port;
};

} // namespace velmora::test
