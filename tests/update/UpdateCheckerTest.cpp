#include "update/UpdateChecker.h"

#include "tests/update/ManifestServer.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace velmora::test {
namespace {

using UpdateChecker::Alert;
using UpdateChecker::QuietCheck;

const QString download = "https://x.example/get";

/// The checker on a real network, against a real server on this machine.
class UpdateCheckerTest : public testing::Test {
protected:
    QUrl at(const QString& path) { return QUrl("http://" + server.authority() + "/" + path); }

    std::optional<UpdateChecker::Release> latest(const QUrl& url) {
        bool answered = false;
        std::optional<UpdateChecker::Release> result;
        UpdateChecker::latest(network, url, [&](auto release) {
            answered = true;
            result = std::move(release);
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return answered; }, 60000));
        return result;
    }

    UpdateChecker::Program program(const QString& path, const QString& version,
                                   QuietCheck quietCheck = QuietCheck::present) {
        return {network,
                preferences,
                at(path),
                version,
                [this] { return now; },
                [this](const Alert& alert) { alerts.push_back(alert); },
                quietCheck};
    }

    /// Whether a fetch is under way.
    bool fetches() const { return !network.findChildren<QObject*>().isEmpty(); }

    double lastCheck() { return preferences.value("updateLastCheck", 0.0).toDouble(); }

    void awaitLastCheck(double time) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return lastCheck() == time; }, 60000));
    }

    void awaitAlert() {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !alerts.empty(); }, 60000));
    }

    int argc = 1;
    char name[5] = "test";
    char* argv = name;
    QCoreApplication application{argc, &argv};
    QTemporaryDir folder;
    QSettings preferences{folder.filePath("velmora.conf"), QSettings::IniFormat};
    QNetworkAccessManager network;
    ManifestServer server;
    double now = 1'000'000;
    std::vector<Alert> alerts;
};

TEST_F(UpdateCheckerTest, FetchesTheManifest) {
    const auto release = latest(at("good"));
    ASSERT_TRUE(release);
    EXPECT_EQ(*release, (UpdateChecker::Release{"2.0", QUrl(download), "Faster."}));
}

TEST_F(UpdateCheckerTest, TakesWhateverBodyArrivesWithWhateverStatus) {
    for (const char* status : {"200", "400", "403", "404", "410", "500", "503"}) {
        EXPECT_TRUE(latest(at(status))) << status;
    }
}

TEST_F(UpdateCheckerTest, FollowsARedirectOnlyToWhereItMayFetch) {
    EXPECT_TRUE(latest(at("redirect")));
    EXPECT_FALSE(latest(at("redirect-away")));
}

TEST_F(UpdateCheckerTest, FindsNoReleaseInWhatIsNoManifest) {
    EXPECT_FALSE(latest(at("garbage")));
    EXPECT_FALSE(latest(at("empty")));
    EXPECT_FALSE(latest(at("cut-off")));
}

TEST_F(UpdateCheckerTest, EndsAnEndlessBody) {
    EXPECT_FALSE(latest(at("endless")));
}

TEST_F(UpdateCheckerTest, GivesUpOnAServerThatHangs) {
    EXPECT_FALSE(latest(at("hang")));
}

TEST_F(UpdateCheckerTest, FindsNoReleaseWhereNothingListens) {
    server.stop();
    EXPECT_FALSE(latest(at("good")));
}

TEST_F(UpdateCheckerTest, FetchesOverPlainHttpFromThisMachineAlone) {
    EXPECT_FALSE(latest(QUrl("http://updates.example/good")));
    EXPECT_FALSE(latest(QUrl("ftp://127.0.0.1/good")));
    EXPECT_FALSE(latest(QUrl("file:///etc/hostname")));
}

TEST_F(UpdateCheckerTest, OffersANewerReleaseWhenAsked) {
    checkInteractively(program("good", "1.9"));
    awaitAlert();
    EXPECT_EQ(alerts,
              (std::vector<Alert>{{"Velmora 2.0 is available",
                                   "You have 1.9. Version 2.0 is available.\n\nFaster.", QUrl(download)}}));
    EXPECT_EQ(lastCheck(), 0);
}

TEST_F(UpdateCheckerTest, SaysSoWhenThereIsNoNewerRelease) {
    for (const char* version : {"2.0.0", "3"}) {
        alerts.clear();
        checkInteractively(program("good", version));
        awaitAlert();
        EXPECT_EQ(alerts,
                  (std::vector<Alert>{
                      {"You're up to date", "Velmora " + QString(version) + " is the latest version.", {}}}));
    }
}

TEST_F(UpdateCheckerTest, SaysSoWhenItCouldNotBeFoundOut) {
    checkInteractively(program("garbage", "1"));
    awaitAlert();
    EXPECT_EQ(alerts,
              (std::vector<Alert>{
                  {"Couldn't check for updates", "Check your internet connection and try again.", {}}}));
}

TEST_F(UpdateCheckerTest, OffersANewerReleaseQuietlyAndRemembersTheTime) {
    checkQuietly(program("good", "1"));
    awaitAlert();
    EXPECT_EQ(alerts.front().title, "Velmora 2.0 is available");
    EXPECT_EQ(lastCheck(), now);
}

TEST_F(UpdateCheckerTest, IsSilentButRemembersTheTimeWhenThereIsNothingNewer) {
    checkQuietly(program("good", "2"));
    awaitLastCheck(now);
    EXPECT_TRUE(alerts.empty());
}

TEST_F(UpdateCheckerTest, AsksAgainOnlyAfterMoreThanADay) {
    preferences.setValue("updateLastCheck", now - 86'400);
    checkQuietly(program("good", "1"));
    EXPECT_FALSE(fetches());

    preferences.setValue("updateLastCheck", now - 86'401);
    checkQuietly(program("good", "1"));
    awaitAlert();
    EXPECT_EQ(lastCheck(), now);
}

TEST_F(UpdateCheckerTest, AsksNobodyQuietlyWhereTheUserDoesNotWantIt) {
    EXPECT_TRUE(UpdateChecker::wantsQuietCheck(preferences)) << "unless told otherwise";
    preferences.setValue("updateQuietCheck", false);
    checkQuietly(program("good", "1"));
    EXPECT_FALSE(fetches());
    checkInteractively(program("good", "1"));
    EXPECT_TRUE(fetches());
    awaitAlert();
    preferences.setValue("updateQuietCheck", true);
    checkQuietly(program("good", "2"));
    awaitLastCheck(now);
}

TEST_F(UpdateCheckerTest, AsksNobodyQuietlyWhereTheQuietCheckIsLeftOut) {
    preferences.setValue("updateQuietCheck", true);
    checkQuietly(program("good", "1", QuietCheck::leftOut));
    EXPECT_FALSE(fetches());
    checkInteractively(program("good", "1", QuietCheck::leftOut));
    awaitAlert();
    EXPECT_EQ(alerts.front().title, "Velmora 2.0 is available");
}

TEST_F(UpdateCheckerTest, TriesAgainNextTimeAfterAQuietCheckThatFailed) {
    checkQuietly(program("garbage", "1"));
    checkInteractively(program("garbage", "1")); // answered after the quiet one
    awaitAlert();
    QTest::qWait(0);
    EXPECT_EQ(alerts.size(), 1U);
    EXPECT_EQ(lastCheck(), 0);
}

TEST_F(UpdateCheckerTest, KnowsItsOwnVersionAndWhereToAsk) {
    EXPECT_FALSE(UpdateChecker::currentVersion().isEmpty());
    EXPECT_EQ(UpdateChecker::manifestURL().scheme(), "https");
}

} // namespace
} // namespace velmora::test
