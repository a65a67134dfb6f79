// The checker over HTTPS: whom it trusts.

#include "tests/support/Files.h"
#include "tests/support/Shell.h"
#include "tests/update/ManifestServer.h"
#include "update/UpdateChecker.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTest>

namespace velmora::test {
namespace {

class HttpsTest : public testing::Test {
protected:
    /// A folder with a certificate for this machine, which nobody vouches for, and its key.
    static fs::path selfSigned() {
        fs::path made = freshFolder();
        shell("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost "
              "-addext subjectAltName=IP:127.0.0.1 -keyout key.pem -out certificate.pem 2>openssl.log",
              made);
        return made;
    }

    static QString file(const fs::path& path) { return QString::fromStdString(path.native()); }

    std::optional<UpdateChecker::Release> latest() const {
        QNetworkAccessManager network;
        bool answered = false;
        std::optional<UpdateChecker::Release> result;
        UpdateChecker::latest(network, QUrl("https://" + server.authority() + "/good"), [&](auto release) {
            answered = true;
            result = std::move(release);
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return answered; }, 60000));
        return result;
    }

    int argc = 1;
    char name[5] = "test";
    char* argv = name;
    QCoreApplication application{argc, &argv};
    const fs::path folder = selfSigned();
    const ManifestServer server{{file(folder / "certificate.pem"), file(folder / "key.pem")}};
};

TEST_F(HttpsTest, TakesAReleaseOnlyFromWhomTheSystemTrusts) {
    EXPECT_FALSE(latest());
    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    trusting.addCaCertificates(QSslCertificate::fromPath(file(folder / "certificate.pem")));
    QSslConfiguration::setDefaultConfiguration(trusting);
    const auto release = latest();
    ASSERT_TRUE(release);
    EXPECT_EQ(release->version, "2.0");
}

} // namespace
} // namespace velmora::test
