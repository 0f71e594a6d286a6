#include <gtest/gtest.h>

#include <QSignalSpy>

#include "SettingsViewFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using SettingsExtensionTest = SettingsViewFixture;

TEST_F(SettingsExtensionTest, theExtensionIsConnectedOrNot) {
    EXPECT_EQ(view().sensorText(), u"Not connected"_s);
    EXPECT_EQ(view().sensorColor(), u"gray"_s);
    session().setSensorConnected(true);
    EXPECT_EQ(view().sensorText(), u"Connected"_s);
    EXPECT_EQ(view().sensorColor(), u"green"_s);
}

TEST_F(SettingsExtensionTest, theExtensionsPageIsNamedByContactAndCompany) {
    struct Row {
        std::optional<QString> contact, company;
        QString text;
    };
    for (const Row& row :
         {Row{u"Sandra Weiss"_s, u"Nordwind"_s, u"Sandra Weiss (Nordwind)"_s},
          Row{u"Sandra Weiss"_s, std::nullopt, u"Sandra Weiss"_s}, Row{std::nullopt, u"Nordwind"_s, u"Nordwind"_s},
          Row{u""_s, u""_s, u"contact"_s}, Row{std::nullopt, std::nullopt, u"contact"_s}})
        EXPECT_EQ(SettingsView::viewing({.entityType = u"contact"_s,
                                         .entityId = u"7"_s,
                                         .displayName = row.contact,
                                         .companyName = row.company}),
                  row.text);
}

TEST_F(SettingsExtensionTest, pageAndCallOfTheExtensionShowOnlyWhileItIsConnected) {
    QSignalSpy changes{&view(), &SettingsView::sensorChanged};
    session().setExtensionContext(
        ExtensionContextPayload{.entityType = u"contact"_s, .entityId = u"7"_s, .displayName = u"Sandra Weiss"_s});
    session().setExtensionCallActive(true);
    EXPECT_EQ(view().viewingText(), QString{});
    EXPECT_FALSE(view().showsCall());
    session().setSensorConnected(true);
    EXPECT_EQ(view().viewingText(), u"Sandra Weiss"_s);
    EXPECT_TRUE(view().showsCall());
    EXPECT_EQ(changes.count(), 3);
    session().setExtensionContext(std::nullopt);
    session().setExtensionCallActive(false);
    EXPECT_EQ(view().viewingText(), QString{});
    EXPECT_FALSE(view().showsCall());
}

TEST_F(SettingsExtensionTest, autoStartIsOnUntilItIsSwitchedOff) {
    EXPECT_TRUE(view().autoStartOnCall());
    view().setAutoStartOnCall(false);
    EXPECT_FALSE(session().autoStartOnCall());
    EXPECT_EQ(fixture.preferences.boolean(u"autoStartOnCall"_s), false);
}

TEST_F(SettingsExtensionTest, theLinkOpensTheExtensionsPage) {
    view().openExtensionPage();
    settle();
    EXPECT_EQ(settings.desktop.browser.pages, std::vector{QUrl{u"https://store.test/corvellan-sensor"_s}});
}

TEST_F(SettingsExtensionTest, theStatusOfTheExtensionIsCheckedOnRequest) {
    fixture.auth->accessToken = u"token"_s;
    fixture.http.answer(200, R"({"sensor_connected": true})");
    view().checkSensorStatus();
    settle();
    EXPECT_EQ(fixture.http.requests.size(), 1U);
    EXPECT_EQ(view().sensorText(), u"Connected"_s);
}

}  // namespace

}  // namespace corvellan::test
