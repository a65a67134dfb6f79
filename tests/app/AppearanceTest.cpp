// The desktop's settings, from a settings portal on a real session bus.

#include "app/desktop/Appearance.h"

#include "tests/app/SessionBus.h"
#include "tests/support/ComesTrue.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMap>

#include <gtest/gtest.h>

#include <memory>

namespace velmora::test {

const QString path = "/org/freedesktop/portal/desktop";

/// The settings portal of a desktop; it knows the settings it was given, by "group key".
class SettingsPortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    using QObject::QObject;

    void change(const QString& group, const QString& key, const QVariant& value) {
        settings[group + ' ' + key] = value;
        QDBusMessage signal =
            QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        EXPECT_TRUE(SessionBus::services().send(signal));
    }

    QMap<QString, QVariant> settings;
    int reads = 0;

public slots:

    // The bus knows it by this name.
    QDBusVariant Read(const QString& group, const QString& key) {
        ++reads;
        const auto setting = settings.constFind(group + ' ' + key);
        if (setting == settings.constEnd()) {
            sendErrorReply("org.freedesktop.portal.Error.NotFound", "Requested setting not found");
            return QDBusVariant(QVariant());
        }
        return QDBusVariant(QVariant::fromValue(QDBusVariant(*setting)));
    }
};

namespace {

const QString standard = "org.freedesktop.appearance";
const QString gnome = "org.gnome.desktop.interface";
const QString kde = "org.kde.kdeglobals.KDE";

class AppearanceTest : public testing::Test {
protected:
    void SetUp() override {
        QDBusConnection bus = SessionBus::services();
        ASSERT_TRUE(bus.registerObject(path, &portal, QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(bus.registerService("org.freedesktop.portal.Desktop"));
    }

    /// Whether it comes to be so after the portal was asked for all settings.
    bool becomes(bool animated, bool highContrast) {
        return comesTrue([=, this] {
            return portal.reads == 4 && appearance->animated() == animated &&
                   appearance->highContrast() == highContrast;
        });
    }

    SessionBus session;
    SettingsPortal portal;
    std::unique_ptr<Appearance> appearance;
};

TEST_F(AppearanceTest, ReadsTheStandardKeys) {
    portal.settings[standard + " reduced-motion"] = 1U;
    portal.settings[standard + " contrast"] = 1U;
    portal.settings[gnome + " enable-animations"] = true;
    appearance = std::make_unique<Appearance>();
    EXPECT_TRUE(appearance->animated()) << "the portal has not answered yet";
    EXPECT_TRUE(becomes(false, true));
}

TEST_F(AppearanceTest, ReadsTheDesktopsOwnKeysWhereTheStandardOnesSayNothing) {
    portal.settings[gnome + " enable-animations"] = false;
    appearance = std::make_unique<Appearance>();
    EXPECT_TRUE(becomes(false, false));
    portal.change(gnome, "enable-animations", true);
    EXPECT_TRUE(becomes(true, false));
    portal.change(kde, "AnimationDurationFactor", 0.0);
    EXPECT_TRUE(becomes(false, false));
}

TEST_F(AppearanceTest, FollowsEachChange) {
    portal.settings[standard + " reduced-motion"] = 0U;
    appearance = std::make_unique<Appearance>();
    EXPECT_TRUE(becomes(true, false));
    portal.change(standard, "contrast", 1U);
    EXPECT_TRUE(becomes(true, true));
    portal.change(standard, "reduced-motion", 1U);
    EXPECT_TRUE(becomes(false, true));
    portal.change(standard, "reduced-motion", 0U);
    portal.change(standard, "contrast", 0U);
    EXPECT_TRUE(becomes(true, false));
}

} // namespace
} // namespace velmora::test

#include "AppearanceTest.moc"
