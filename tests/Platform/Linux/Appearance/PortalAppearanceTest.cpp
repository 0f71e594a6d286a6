#include "Platform/Linux/Appearance/PortalAppearance.h"

#include <gtest/gtest.h>

#include <memory>
#include <QDBusError>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include "Support/PrivateBus.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;

/// A desktop's settings, which hold one.
class StandInSettings final : public QDBusVirtualObject {
public:
    StandInSettings(QDBusConnection bus, QVariant scheme) : answer(std::move(scheme)), m_bus(std::move(bus)) {
        if (!m_bus.registerVirtualObject(portalPath, this) || !m_bus.registerService(portalName))
            throw std::runtime_error("the portal can't be there");
    }
    ~StandInSettings() override {
        m_bus.unregisterService(portalName);
        m_bus.unregisterObject(portalPath);
    }
    StandInSettings(const StandInSettings&) = delete;
    StandInSettings& operator=(const StandInSettings&) = delete;

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() != settingsInterface || message.member() != u"Read"_s)
            return false;
        questions.append(message.arguments());
        connection.send(answer.isValid() ? message.createReply(QVariantList{answer})
                                         : message.createErrorReply(QDBusError::Failed, u"no such setting"_s));
        return true;
    }

    QVariant answer;
    QList<QVariantList> questions;

private:
    QDBusConnection m_bus;
};

/// As the portal wraps it in its answer.
QVariant wrapped(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant{QVariant::fromValue(QDBusVariant{value})});
}

void announce(const QDBusConnection& from, const QString& group, const QString& key, const QVariant& value) {
    auto signal = QDBusMessage::createSignal(portalPath, settingsInterface, u"SettingChanged"_s);
    signal.setArguments({group, key, QVariant::fromValue(QDBusVariant{value})});
    from.send(signal);
}

class PortalAppearanceTest : public testing::Test {
protected:
    void follow() {
        appearance = std::make_unique<PortalAppearance>(bus.connect());
        appearance->onChanged = [this] { ++changes; };
    }
    [[nodiscard]] bool becomes(ColorScheme scheme) const {
        return spinUntil([&] { return appearance->colorScheme() == scheme; });
    }

    PrivateBus bus;
    QDBusConnection desktop = bus.connect();
    std::unique_ptr<PortalAppearance> appearance;
    int changes = 0;
};

TEST_F(PortalAppearanceTest, asksThePortalAtTheStart) {
    const StandInSettings settings{desktop, wrapped(2U)};
    follow();
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::noPreference) << "nothing waits for the answer";
    EXPECT_TRUE(becomes(ColorScheme::light));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(settings.questions, (QList<QVariantList>{{u"org.freedesktop.appearance"_s, u"color-scheme"_s}}));
}

TEST_F(PortalAppearanceTest, followsWhatTheUserChooses) {
    const StandInSettings settings{desktop, wrapped(2U)};
    follow();
    ASSERT_TRUE(becomes(ColorScheme::light));
    announce(desktop, u"org.freedesktop.appearance"_s, u"color-scheme"_s, 1U);
    EXPECT_TRUE(becomes(ColorScheme::dark));
    announce(desktop, u"org.freedesktop.appearance"_s, u"color-scheme"_s, 0U);
    EXPECT_TRUE(becomes(ColorScheme::noPreference));
    EXPECT_EQ(changes, 3);
}

TEST_F(PortalAppearanceTest, otherSettingsAndOtherProgramsChangeNothing) {
    const StandInSettings settings{desktop, wrapped(2U)};
    QDBusConnection stranger = bus.connect();
    follow();
    ASSERT_TRUE(becomes(ColorScheme::light));
    announce(desktop, u"org.freedesktop.appearance"_s, u"contrast"_s, 1U);
    announce(desktop, u"org.gnome.desktop.interface"_s, u"color-scheme"_s, 1U);
    announce(stranger, u"org.freedesktop.appearance"_s, u"color-scheme"_s, 0U);
    // Its answer shows that the stranger's signal has passed the bus.
    stranger.call(
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
    announce(desktop, u"org.freedesktop.appearance"_s, u"color-scheme"_s, 1U);
    EXPECT_TRUE(becomes(ColorScheme::dark));
    EXPECT_EQ(changes, 2);
}

TEST_F(PortalAppearanceTest, aPortalThatComesLaterIsAskedThen) {
    follow();
    const StandInSettings settings{desktop, wrapped(2U)};
    EXPECT_TRUE(becomes(ColorScheme::light));
}

TEST_F(PortalAppearanceTest, aPortalThatHasGoneLeavesTheLook) {
    {
        const StandInSettings settings{desktop, wrapped(2U)};
        follow();
        ASSERT_TRUE(becomes(ColorScheme::light));
    }
    const StandInSettings next{desktop, wrapped(1U)};
    EXPECT_TRUE(becomes(ColorScheme::dark));
    EXPECT_EQ(changes, 2) << "light, then dark, and nothing between";
}

TEST_F(PortalAppearanceTest, aPortalWithoutTheSettingIsNoPreference) {
    const StandInSettings settings{desktop, {}};
    follow();
    EXPECT_TRUE(spinUntil([&] { return !settings.questions.isEmpty(); }));
    settle();
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::noPreference);
    EXPECT_EQ(changes, 0);
}

TEST_F(PortalAppearanceTest, onlyThePortalsOwnNumbersCount) {
    struct Row {
        QVariant value;
        ColorScheme scheme;
    };
    for (const Row& row :
         {Row{0U, ColorScheme::noPreference}, Row{1U, ColorScheme::dark}, Row{2U, ColorScheme::light},
          Row{3U, ColorScheme::noPreference}, Row{0xffffffffU, ColorScheme::noPreference},
          Row{1, ColorScheme::noPreference}, Row{u"1"_s, ColorScheme::noPreference},
          Row{true, ColorScheme::noPreference}, Row{{}, ColorScheme::noPreference},
          Row{QVariant::fromValue(QDBusVariant{1U}), ColorScheme::dark}, Row{wrapped(1U), ColorScheme::dark},
          Row{QVariant::fromValue(QDBusVariant{wrapped(1U)}), ColorScheme::noPreference}})
        EXPECT_EQ(PortalAppearance::schemeOf(row.value), row.scheme) << row.value.typeName();
}

}  // namespace

}  // namespace corvellan::test
