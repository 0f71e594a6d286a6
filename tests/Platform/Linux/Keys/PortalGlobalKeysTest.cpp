// The shortcut of a Wayland desktop, from a portal that stands in for it on a real bus.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "Platform/Linux/Keys/PortalGlobalKeys.h"
#include "StandInPortal.h"
#include "Support/PrivateBus.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class PortalGlobalKeysTest : public testing::Test {
protected:
    void ask() {
        monitor = PortalGlobalKeys{own, clock}.addGlobalMonitor([this](const KeyDown& key) { seen.push_back(key); });
        monitor->onChanged = [this] { explanations.append(monitor->explanation()); };
    }
    void askAndWatch() {
        ask();
        ASSERT_TRUE(becomes(GlobalKeyWatch::watching)) << monitor->explanation().toStdString();
    }
    [[nodiscard]] bool becomes(GlobalKeyWatch watch) {
        return spinUntil([&] { return monitor->watch() == watch; });
    }
    /// Ends as unavailable, and says so in a sentence with that reason and with what to do instead.
    void expectUnavailable(const QString& reason) {
        EXPECT_TRUE(becomes(GlobalKeyWatch::unavailable));
        EXPECT_EQ(monitor->explanation(), u"The shortcut does not work in other programs: "_s + reason +
                                              u". Start and end coaching in the window or from the tray icon's menu "
                                              "instead."_s);
    }
    /// One more press that counts; how many have counted by then, without it.
    std::size_t comesBeforeAnother() {
        portal->deactivate();
        clock.advance(5s);
        portal->activate({{u"activation_token"_s, u"marker"_s}});
        EXPECT_TRUE(spinUntil([&] { return !seen.empty() && seen.back().activationToken == u"marker"_s; }));
        return seen.size() - 1;
    }

    PrivateBus bus;
    ManualClock clock;
    QDBusConnection own = bus.connect();
    std::unique_ptr<StandInPortal> portal = std::make_unique<StandInPortal>(bus.connect());
    std::vector<KeyDown> seen;
    QStringList explanations;
    std::unique_ptr<GlobalKeyMonitor> monitor;
};

TEST_F(PortalGlobalKeysTest, asksForTheShortcutAndDeliversIt) {
    ask();
    EXPECT_EQ(monitor->watch(), GlobalKeyWatch::starting);
    ASSERT_TRUE(becomes(GlobalKeyWatch::watching));

    EXPECT_EQ(portal->calls, QStringList({u"Register"_s, u"Get"_s, u"CreateSession"_s, u"BindShortcuts"_s}));
    EXPECT_EQ(portal->registration.value(0).toString(), u"com.teskara.CorvellanBram"_s);
    ASSERT_EQ(portal->binding.size(), 4);
    EXPECT_EQ(portal->binding[0].value<QDBusObjectPath>().path(), portal->session());
    const auto asked = qdbus_cast<QList<ListedShortcut>>(portal->binding[1]);
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked[0].properties.value(u"description"_s), u"Start or end coaching"_s);
    EXPECT_EQ(asked[0].properties.value(u"preferred_trigger"_s), u"LOGO+SHIFT+j"_s);
    EXPECT_EQ(monitor->explanation(),
              u"Your desktop has assigned the shortcut: Super+Shift+J. The keys can be changed in the desktop's "
              "keyboard settings."_s);

    portal->activate({{u"activation_token"_s, u"token 1"_s}});
    ASSERT_TRUE(spinUntil([this] { return !seen.empty(); }));
    EXPECT_EQ(seen[0].key, PhysicalKey::j);
    EXPECT_TRUE(seen[0].isCommandDown);
    EXPECT_TRUE(seen[0].isShiftDown);
    EXPECT_EQ(seen[0].activationToken, u"token 1"_s);
    EXPECT_EQ(comesBeforeAnother(), 1U);
}

TEST_F(PortalGlobalKeysTest, anAnswerMayComeBeforeItsCallReturns) {
    portal->createSession = [this](const QDBusMessage& call) {
        portal->respond(call, {0U, QVariantMap{{u"session_handle"_s, portal->sessionFor(call)}}});
        portal->accept(call);
    };
    askAndWatch();
}

TEST_F(PortalGlobalKeysTest, theSessionMayBeGivenAsAPath) {
    portal->createSession = [this](const QDBusMessage& call) {
        portal->accept(call);
        const QDBusObjectPath path{portal->sessionFor(call)};
        portal->respond(call, {0U, QVariantMap{{u"session_handle"_s, QVariant::fromValue(path)}}});
    };
    askAndWatch();
}

TEST_F(PortalGlobalKeysTest, waitsForTheUserAsLongAsItTakes) {
    std::optional<QDBusMessage> binding;
    portal->bindShortcuts = [&](const QDBusMessage& call) {
        portal->accept(call);
        binding = call;
    };
    ask();
    ASSERT_TRUE(spinUntil([&] { return binding.has_value(); }));
    clock.advance(1h);
    settle();
    EXPECT_EQ(monitor->watch(), GlobalKeyWatch::starting);
    EXPECT_EQ(monitor->explanation(), u"Your desktop has been asked for the shortcut and may want your consent."_s);

    portal->respond(*binding, {0U, QVariantMap{{u"shortcuts"_s, StandInPortal::listed({})}}});
    ASSERT_TRUE(becomes(GlobalKeyWatch::watching));
    EXPECT_TRUE(monitor->explanation().startsWith(u"Your desktop has taken the shortcut over."_s));
}

TEST_F(PortalGlobalKeysTest, aDesktopWithoutAPortalIsTold) {
    portal.reset();
    ask();
    expectUnavailable(u"this desktop offers programs no global shortcuts"_s);
    EXPECT_EQ(explanations.size(), 1);
}

TEST_F(PortalGlobalKeysTest, aPortalWithoutShortcutsIsTold) {
    portal->version = {};
    ask();
    expectUnavailable(u"this desktop offers programs no global shortcuts"_s);
    EXPECT_FALSE(portal->calls.contains(u"CreateSession"_s));
}

TEST_F(PortalGlobalKeysTest, noBusIsTold) {
    const QDBusConnection none{u"no such connection"_s};
    monitor = PortalGlobalKeys{none, clock}.addGlobalMonitor([](const KeyDown&) {});
    expectUnavailable(u"there is no session bus to ask the desktop through"_s);
}

TEST_F(PortalGlobalKeysTest, aRefusalByTheUserIsTold) {
    portal->bindShortcuts = [this](const QDBusMessage& call) {
        portal->accept(call);
        portal->respond(call, {1U, QVariantMap{}});
    };
    ask();
    expectUnavailable(u"it was refused on this desktop"_s);
    // The session is of no more use.
    EXPECT_TRUE(spinUntil([this] { return portal->closedPaths == QStringList{portal->session()}; }));
}

TEST_F(PortalGlobalKeysTest, aRefusalByTheDesktopIsTold) {
    const auto refusals = std::to_array<std::function<void(const QDBusMessage&)>>(
        {[this](const QDBusMessage& call) { portal->refuse(call); },
         [this](const QDBusMessage& call) {
             portal->accept(call);
             portal->respond(call, {2U, QVariantMap{}});
         },
         [this](const QDBusMessage& call) {
             portal->accept(call);
             portal->respond(call, {4'000'000'000U, QVariantMap{}});
         }});
    for (const auto& refusal : refusals) {
        portal->createSession = refusal;
        ask();
        expectUnavailable(u"the desktop refused it"_s);
        portal->createSession = [this](const QDBusMessage& call) { portal->grantSession(call); };
        portal->bindShortcuts = refusal;
        ask();
        expectUnavailable(u"the desktop refused it"_s);
        portal->bindShortcuts = [this](const QDBusMessage& call) { portal->grantShortcut(call); };
    }
}

TEST_F(PortalGlobalKeysTest, aVersionOfAnotherTypeIsNoOffer) {
    for (const QVariant& version :
         {QVariant{u"2"_s}, QVariant{2}, QVariant{true}, QVariant{QStringList{}}, QVariant{QVariantMap{}}}) {
        portal->version = version;
        ask();
        expectUnavailable(u"this desktop offers programs no global shortcuts"_s);
    }
}

TEST_F(PortalGlobalKeysTest, answersOfOtherTypesMakeNoSense) {
    const std::vector<QVariantList> answers{{},
                                            {0U},
                                            {QVariantMap{}},
                                            {u"0"_s, QVariantMap{}},
                                            {0, QVariantMap{}},
                                            {0U, u"session"_s},
                                            {0U, QStringList{}},
                                            {0U, QVariantMap{}, 0U},
                                            {0U, QVariantMap{}}};
    for (const QVariantList& answer : answers) {
        portal->createSession = [&](const QDBusMessage& call) {
            portal->accept(call);
            portal->respond(call, answer);
        };
        ask();
        expectUnavailable(u"the desktop answered in a way that makes no sense"_s);
    }
}

TEST_F(PortalGlobalKeysTest, sessionsWithImpossibleNamesMakeNoSense) {
    const std::vector<QVariant> handles{u""_s,
                                        u"/"_s,
                                        u"no path at all"_s,
                                        u"/org/freedesktop/portal/desktop"_s,
                                        u"/org/freedesktop/portal/desktop/session/"_s,
                                        u"/org/freedesktop/portal/desktop/session/1_2/"_s,
                                        u"/org/freedesktop/portal/desktop/session/1_2/a/b"_s,
                                        u"/org/freedesktop/portal/desktop/session/1_2/a\n"_s,
                                        u"/org/freedesktop/portal/desktop/session/1_2/ü"_s,
                                        u"/org/freedesktop/portal/desktop/session/1_2/"_s + QString{100'000, u'a'},
                                        QVariant::fromValue(QDBusObjectPath{u"/"_s}),
                                        17,
                                        QStringList{u"/org/freedesktop/portal/desktop/session/1_2/a"_s},
                                        QVariantMap{}};
    for (const QVariant& handle : handles) {
        portal->createSession = [&](const QDBusMessage& call) {
            portal->accept(call);
            portal->respond(call, {0U, QVariantMap{{u"session_handle"_s, handle}}});
        };
        ask();
        expectUnavailable(u"the desktop answered in a way that makes no sense"_s);
    }
    EXPECT_FALSE(portal->calls.contains(u"BindShortcuts"_s));
}

TEST_F(PortalGlobalKeysTest, aGrantWithoutOurShortcutIsNone) {
    const std::vector<QVariantMap> grants{{},
                                          {{u"shortcuts"_s, u"start-or-end-coaching"_s}},
                                          {{u"shortcuts"_s, QStringList{u"start-or-end-coaching"_s}}},
                                          {{u"shortcuts"_s, QVariantMap{{u"start-or-end-coaching"_s, 1}}}},
                                          {{u"shortcuts"_s, 5U}},
                                          {{u"shortcuts"_s, StandInPortal::listed(u"F1"_s, u"other"_s)}},
                                          {{u"shortcuts"_s, QVariant::fromValue(QList<ListedShortcut>{})}}};
    for (const QVariantMap& grant : grants) {
        portal->bindShortcuts = [&](const QDBusMessage& call) {
            portal->accept(call);
            portal->respond(call, {0U, grant});
        };
        ask();
        expectUnavailable(u"the desktop assigned no keys to it"_s);
    }
}

TEST_F(PortalGlobalKeysTest, keysAreToldInOneShortPlainLine) {
    portal->trigger = u"  Super\n+\tJ\u0007\u200E "_s;
    askAndWatch();
    EXPECT_TRUE(monitor->explanation().startsWith(u"Your desktop has assigned the shortcut: Super + J. The"_s))
        << monitor->explanation().toStdString();
    portal->trigger = QString{1'000'000, u'x'};
    askAndWatch();
    EXPECT_TRUE(monitor->explanation().startsWith(u"Your desktop has taken the shortcut over. The"_s));
}

TEST_F(PortalGlobalKeysTest, keysThatTheUserChangesAreTold) {
    askAndWatch();
    const QVariant session = QVariant::fromValue(QDBusObjectPath{portal->session()});
    // None of these is a list of our session.
    portal->shortcutSignal(u"ShortcutsChanged"_s, {});
    portal->shortcutSignal(u"ShortcutsChanged"_s, {session, u"F1"_s});
    portal->shortcutSignal(u"ShortcutsChanged"_s, {session, QStringList{u"F1"_s}});
    portal->shortcutSignal(u"ShortcutsChanged"_s,
                           {QVariant::fromValue(QDBusObjectPath{u"/other"_s}), StandInPortal::listed(u"F1"_s)});
    portal->shortcutSignal(u"ShortcutsChanged"_s, {session, StandInPortal::listed(u"F9"_s)});
    EXPECT_TRUE(spinUntil([this] { return monitor->explanation().contains(u": F9."_s); }));
    EXPECT_FALSE(explanations.join(u' ').contains(u"F1"_s));
}

TEST_F(PortalGlobalKeysTest, onlyOurShortcutOfOurSessionFromThePortalCounts) {
    askAndWatch();
    const QVariant session = QVariant::fromValue(QDBusObjectPath{portal->session()});
    const quint64 time = 1;
    const QString identifier = u"start-or-end-coaching"_s;
    const QString activated = u"Activated"_s;
    portal->shortcutSignal(activated, {});
    portal->shortcutSignal(activated, {session});
    portal->shortcutSignal(activated, {session, identifier});
    portal->shortcutSignal(activated, {session, identifier, time});
    portal->shortcutSignal(activated, {portal->session(), identifier, time, QVariantMap{}});
    portal->shortcutSignal(activated, {session, 7, time, QVariantMap{}});
    portal->shortcutSignal(activated, {session, identifier, u"now"_s, QVariantMap{}});
    portal->shortcutSignal(activated, {session, identifier, time, u"options"_s});
    portal->shortcutSignal(activated, {session, identifier, time, QVariantMap{}, true});
    portal->shortcutSignal(activated, {session, u"another"_s, time, QVariantMap{}});
    portal->shortcutSignal(activated,
                           {QVariant::fromValue(QDBusObjectPath{u"/other"_s}), identifier, time, QVariantMap{}});
    EXPECT_EQ(comesBeforeAnother(), 0U);

    // Another program says the very same words, and is heard by everybody before it hears itself.
    QDBusConnection intruder = bus.connect();
    auto forged = QDBusMessage::createTargetedSignal(own.baseService(), StandInPortal::path(),
                                                     u"org.freedesktop.portal.GlobalShortcuts"_s, activated);
    forged.setArguments(portal->arguments({}));
    ASSERT_TRUE(intruder.send(forged));
    intruder.call(
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s));
    seen.clear();
    EXPECT_EQ(comesBeforeAnother(), 0U);
}

TEST_F(PortalGlobalKeysTest, answersFromAnotherProgramDontCount) {
    QDBusConnection intruder = bus.connect();
    portal->createSession = [&](const QDBusMessage& call) {
        // Guessing the path right is already more than an intruder can do.
        auto forged = QDBusMessage::createTargetedSignal(
            own.baseService(),
            StandInPortal::path() + u"/request/"_s + own.baseService().sliced(1).replace(u'.', u'_') + u'/' +
                qdbus_cast<QVariantMap>(call.arguments().at(0)).value(u"handle_token"_s).toString(),
            u"org.freedesktop.portal.Request"_s, u"Response"_s);
        forged.setArguments({1U, QVariantMap{}});
        intruder.send(forged);
        intruder.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus.Peer"_s,
                                                     u"Ping"_s));
        portal->grantSession(call);
    };
    askAndWatch();
}

TEST_F(PortalGlobalKeysTest, aTokenOfAnotherTypeIsNone) {
    askAndWatch();
    portal->activate({{u"activation_token"_s, 5}});
    ASSERT_TRUE(spinUntil([this] { return !seen.empty(); }));
    EXPECT_EQ(seen[0].activationToken, QString{});
}

TEST_F(PortalGlobalKeysTest, aHeldKeyRepeatsNothing) {
    askAndWatch();
    for (int i = 0; i < 5; ++i)
        portal->activate();
    EXPECT_EQ(comesBeforeAnother(), 1U);
    seen.clear();
    // Let go in between: as often as it was pressed.
    portal->deactivate();
    portal->activate();
    portal->deactivate();
    portal->activate();
    EXPECT_EQ(comesBeforeAnother(), 2U);
}

TEST_F(PortalGlobalKeysTest, aDesktopThatNeverTellsOfAReleaseStillDeliversTheNextPress) {
    askAndWatch();
    const auto press = [this](const QString& token) { portal->activate({{u"activation_token"_s, token}}); };
    press(u"1"_s);
    ASSERT_TRUE(spinUntil([this] { return seen.size() == 1; }));
    clock.advance(999ms);
    press(u"held"_s);
    // A change of the keys comes after it on the same connection.
    portal->shortcutSignal(u"ShortcutsChanged"_s,
                           {QVariant::fromValue(QDBusObjectPath{portal->session()}), StandInPortal::listed(u"F9"_s)});
    ASSERT_TRUE(spinUntil([this] { return monitor->explanation().contains(u"F9"_s); }));
    clock.advance(1s);
    press(u"2"_s);
    ASSERT_TRUE(spinUntil([this] { return seen.size() == 2; }));
    EXPECT_EQ(seen[1].activationToken, u"2"_s);
}

TEST_F(PortalGlobalKeysTest, aPortalThatVanishesIsToldAndAskedAgainWhenItReturns) {
    askAndWatch();
    portal.reset();
    expectUnavailable(u"the part of the desktop that delivers it has ended"_s);
    portal = std::make_unique<StandInPortal>(bus.connect());
    ASSERT_TRUE(becomes(GlobalKeyWatch::watching));
    EXPECT_EQ(comesBeforeAnother(), 0U);
}

TEST_F(PortalGlobalKeysTest, aPortalThatFallsOverTheQuestionIsNotAskedAgain) {
    portal->bindShortcuts = [this](const QDBusMessage&) { mainExecutor().post([this] { portal.reset(); }); };
    ask();
    expectUnavailable(u"the part of the desktop that delivers it has ended"_s);
    portal = std::make_unique<StandInPortal>(bus.connect());
    const auto second = PortalGlobalKeys{own, clock}.addGlobalMonitor([](const KeyDown&) {});
    ASSERT_TRUE(spinUntil([&] { return second->watch() == GlobalKeyWatch::watching; }));
    EXPECT_EQ(portal->calls.count(u"CreateSession"_s), 1);
    EXPECT_EQ(monitor->watch(), GlobalKeyWatch::unavailable);
}

TEST_F(PortalGlobalKeysTest, aSessionThatTheDesktopClosesIsTold) {
    askAndWatch();
    portal->closeSession();
    expectUnavailable(u"the desktop has taken it back"_s);
}

TEST_F(PortalGlobalKeysTest, aBusThatEndsIsTold) {
    askAndWatch();
    bus.kill();
    expectUnavailable(u"the connection to the desktop was lost"_s);
}

TEST_F(PortalGlobalKeysTest, endingClosesTheSession) {
    askAndWatch();
    monitor.reset();
    EXPECT_TRUE(spinUntil([this] { return portal->closedPaths == QStringList{portal->session()}; }));
    portal->activate();
    settle();
    EXPECT_TRUE(seen.empty());
}

TEST_F(PortalGlobalKeysTest, endingClosesTheDialogThatStillAsksTheUser) {
    portal->bindShortcuts = [this](const QDBusMessage& call) { portal->accept(call); };
    ask();
    ASSERT_TRUE(spinUntil([this] { return portal->calls.contains(u"BindShortcuts"_s); }));
    monitor.reset();
    ASSERT_TRUE(spinUntil([this] { return portal->closedPaths.size() == 2; }));
    EXPECT_TRUE(portal->closedPaths[0].startsWith(StandInPortal::path() + u"/request/"_s));
    EXPECT_EQ(portal->closedPaths[1], portal->session());
}

TEST_F(PortalGlobalKeysTest, theHandlersMayDestroyTheMonitor) {
    askAndWatch();
    monitor->onChanged = [this] { monitor.reset(); };
    portal->closeSession();
    EXPECT_TRUE(spinUntil([this] { return !monitor; }));

    monitor = PortalGlobalKeys{own, clock}.addGlobalMonitor([this](const KeyDown&) { monitor.reset(); });
    ASSERT_TRUE(becomes(GlobalKeyWatch::watching));
    portal->activate();
    EXPECT_TRUE(spinUntil([this] { return !monitor; }));
}

}  // namespace

}  // namespace corvellan::test
