#include <gtest/gtest.h>

#include <QSignalSpy>

#include "SettingsViewFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using SettingsServerTest = SettingsViewFixture;

const QString production = u"wss://coach.test/ws"_s;
const QString local = u"ws://localhost:3001/ws"_s;
const QString chat = u"https://chat.test"_s;

TEST_F(SettingsServerTest, theServerModesAreNamedInTheirOrder) {
    EXPECT_EQ(SettingsView::serverModes(), (QStringList{u"Production"_s, u"Local (dev)"_s, u"Custom"_s}));
}

TEST_F(SettingsServerTest, eachModeIsStoredUnderItsRawValueAndGivesItsServer) {
    struct Row {
        int index;
        QString custom, stored, server;
    };
    for (const Row& row :
         {Row{0, u"ws://own.test/ws"_s, u"production"_s, production}, Row{1, u"ws://own.test/ws"_s, u"local"_s, local},
          Row{2, u"ws://own.test/ws"_s, u"custom"_s, u"ws://own.test/ws"_s}, Row{2, QString{}, u"custom"_s, production},
          Row{2, u" "_s, u"custom"_s, u" "_s}}) {
        view().setCustomServerURL(row.custom);
        view().setServerModeIndex(row.index);
        EXPECT_EQ(view().serverModeIndex(), row.index);
        EXPECT_EQ(fixture.preferences.string(u"serverMode"_s), row.stored);
        EXPECT_EQ(session().serverURL(), row.server) << qPrintable(row.stored);
    }
}

TEST_F(SettingsServerTest, customModeWithAnEmptyFieldConnectsToProduction) {
    view().setServerMode(ServerMode::custom);
    view().setCustomServerURL(u"ws://own.test/ws"_s);
    EXPECT_EQ(session().serverURL(), u"ws://own.test/ws"_s);
    view().setCustomServerURL({});
    EXPECT_EQ(session().serverURL(), production);
}

TEST_F(SettingsServerTest, everyLetterOfACustomAddressIsAppliedAndStored) {
    view().setServerMode(ServerMode::custom);
    for (const QString& typed : {u"w"_s, u"ws"_s, u"ws:"_s}) {
        view().setCustomServerURL(typed);
        EXPECT_EQ(session().serverURL(), typed);
        EXPECT_EQ(fixture.preferences.string(u"customServerURL"_s), typed);
    }
}

TEST_F(SettingsServerTest, aCustomAddressIsKeptButUnusedInOtherModes) {
    view().setServerMode(ServerMode::local);
    view().setCustomServerURL(u"ws://own.test/ws"_s);
    EXPECT_EQ(session().serverURL(), local);
    EXPECT_FALSE(view().isCustomServer());
    view().setServerMode(ServerMode::custom);
    EXPECT_TRUE(view().isCustomServer());
    EXPECT_EQ(session().serverURL(), u"ws://own.test/ws"_s);
}

TEST_F(SettingsServerTest, signInStaysAtTheChatBackEndInEveryMode) {
    view().setCustomServerURL(u"ws://own.test/ws"_s);
    for (const ServerModeRow& row : serverModeRows) {
        session().setAuthURL(u"https://elsewhere.test"_s);
        view().setServerMode(row.value);
        EXPECT_EQ(session().authURL(), chat) << row.raw;
    }
}

TEST_F(SettingsServerTest, aStoredModeThatIsNoneOfTheThreeCountsAsProduction) {
    for (const QString& stored : {u""_s, u"Local"_s, u"staging"_s, u"local "_s, u"2"_s}) {
        fixture.preferences.setString(u"serverMode"_s, stored);
        EXPECT_EQ(view().serverMode(), ServerMode::production) << qPrintable(stored);
        view().applyServerURL();
        EXPECT_EQ(session().serverURL(), production) << qPrintable(stored);
    }
    fixture.preferences.setBoolean(u"serverMode"_s, true);
    EXPECT_EQ(view().serverMode(), ServerMode::production);
}

TEST_F(SettingsServerTest, openingAppliesTheStoredServerAgain) {
    session().setServerURL(u"ws://elsewhere.test/ws"_s);
    session().setAuthURL(u"https://elsewhere.test"_s);
    EXPECT_EQ(view().serverMode(), ServerMode::local);

    view().appear();

    EXPECT_EQ(session().serverURL(), local);
    EXPECT_EQ(session().authURL(), chat);
}

TEST_F(SettingsServerTest, openingShowsWhatWasStoredElsewhereMeanwhile) {
    QSignalSpy modes{&view(), &SettingsView::serverModeChanged};
    QSignalSpy addresses{&view(), &SettingsView::customServerURLChanged};
    fixture.preferences.setString(u"serverMode"_s, u"custom"_s);
    fixture.preferences.setString(u"customServerURL"_s, u"ws://own.test/ws"_s);

    view().appear();

    EXPECT_EQ(modes.count(), 1);
    EXPECT_EQ(addresses.count(), 1);
    EXPECT_EQ(view().serverModeIndex(), 2);
    EXPECT_EQ(view().customServerURL(), u"ws://own.test/ws"_s);
    EXPECT_EQ(session().serverURL(), u"ws://own.test/ws"_s);
}

TEST_F(SettingsServerTest, aModeThatIsNotThereChangesNothing) {
    for (const int index : {-1, 3}) {
        view().setServerModeIndex(index);
        EXPECT_EQ(view().serverMode(), ServerMode::local);
    }
}

TEST_F(SettingsServerTest, theConnectionIsGreenOrGrayBesideTheStatus) {
    QSignalSpy changes{&view(), &SettingsView::statusChanged};
    EXPECT_EQ(view().connectionColor(), u"gray"_s);
    EXPECT_EQ(view().statusText(), u"Ready"_s);
    session().setIsConnected(true);
    EXPECT_EQ(view().connectionColor(), u"green"_s);
    session().setStatusText(u"Listening..."_s);
    EXPECT_EQ(view().statusText(), u"Listening..."_s);
    EXPECT_EQ(changes.count(), 2);
}

}  // namespace

}  // namespace corvellan::test
