#include <gtest/gtest.h>

#include <QSignalSpy>

#include "SettingsViewFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

using SettingsAccountTest = SettingsViewFixture;

const QString chat = u"https://chat.test"_s;

TEST_F(SettingsAccountTest, theAccountFollowsUserAndServer) {
    struct Row {
        std::optional<QString> user;
        ServerMode mode;
        QString text, color;
        bool canLogin, canLogout;
    };
    for (const Row& row : {Row{std::nullopt, ServerMode::production, u"Not signed in"_s, u"orange"_s, true, false},
                           Row{std::nullopt, ServerMode::local, u"Dev mode (no auth required)"_s, {}, false, false},
                           Row{std::nullopt, ServerMode::custom, u"Not signed in"_s, u"orange"_s, true, false}}) {
        session().setUserEmail(row.user);
        view().setServerMode(row.mode);
        EXPECT_EQ(view().accountText(), row.text);
        EXPECT_EQ(view().accountColor(), row.color);
        EXPECT_EQ(view().userEmail(), row.user.value_or(QString{}));
        EXPECT_EQ(view().canLogin(), row.canLogin);
        EXPECT_EQ(view().canLogout(), row.canLogout);
    }
}

TEST_F(SettingsAccountTest, signedInAndTheLogoutAppearWhicheverTheMode) {
    session().setUserEmail(u"ada@teskara.test"_s);
    for (const ServerModeRow& row : serverModeRows) {
        view().setServerMode(row.value);
        EXPECT_EQ(view().accountText(), u"Signed in"_s) << row.raw;
        EXPECT_EQ(view().accountColor(), QString{}) << row.raw;
        EXPECT_EQ(view().userEmail(), u"ada@teskara.test"_s) << row.raw;
        EXPECT_TRUE(view().canLogout()) << row.raw;
        EXPECT_FALSE(view().canLogin()) << row.raw;
    }
}

TEST_F(SettingsAccountTest, loginSignsInAtTheChatBackEnd) {
    view().setServerMode(ServerMode::production);
    view().login();
    settle();
    EXPECT_TRUE(fixture.did("auth.login"));
    EXPECT_EQ(fixture.auth->baseUrl, chat);
}

TEST_F(SettingsAccountTest, logoutSignsOut) {
    session().setUserEmail(u"ada@teskara.test"_s);
    view().logout();
    settle();
    EXPECT_TRUE(fixture.did("auth.logout"));
    EXPECT_FALSE(view().canLogout());
}

TEST_F(SettingsAccountTest, aCustomServerOnThisMachineNeedsNoAccountEither) {
    view().setServerMode(ServerMode::custom);
    view().setCustomServerURL(u"ws://127.0.0.1:9000/ws"_s);
    EXPECT_EQ(view().accountText(), u"Dev mode (no auth required)"_s);
}

TEST_F(SettingsAccountTest, theAccountIsToldAnewWhenUserOrServerChange) {
    QSignalSpy changes{&view(), &SettingsView::accountChanged};
    session().setUserEmail(u"ada@teskara.test"_s);
    EXPECT_EQ(changes.count(), 1);
    session().setServerURL(u"wss://other.test/ws"_s);
    EXPECT_EQ(changes.count(), 2);
}

}  // namespace

}  // namespace corvellan::test
