// Notifications and what the user does with them, from a service that stands in for a desktop's on a real bus.

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "Platform/Linux/Notifications/DesktopNotifications.h"
#include "StandInNotifications.h"
#include "Support/PrivateBus.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

class DesktopNotificationsTest : public testing::Test {
protected:
    void SetUp() override {
        center->didReceive = [this](const NotificationResponse& response) { responses.push_back(response); };
        center->setCategory(
            {.identifier = u"MEETING_REMINDER"_s,
             .actions = {
                 {.identifier = u"START_COACHING"_s, .title = u"Start Coaching"_s, .bringsToForeground = true}}});
    }

    static NotificationRequest reminder(const QString& identifier = u"meeting-1"_s) {
        return {.identifier = identifier,
                .title = u"Meeting starting soon"_s,
                .subtitle = u"Demo <with> Ann & Bob"_s,
                .body = u"Start coaching with Corvellan Bram?"_s,
                .categoryIdentifier = u"MEETING_REMINDER"_s,
                .playsDefaultSound = true,
                .userInfo = {{u"meetingId"_s, identifier}, {u"company"_s, u"ACME"_s}}};
    }

    /// Shows one and waits until the program knows its number, which it is.
    uint show(const NotificationRequest& request) {
        const std::size_t before = daemon->notified.size();
        center->add(request);
        EXPECT_TRUE(spinUntil([&] { return daemon->notified.size() == before + 1; }));
        settleBus();
        return daemon->nextNumber - 1;
    }
    /// What was sent before on the service's connection has arrived after this.
    void settleBus() {
        const auto asked = center->authorization();
        EXPECT_TRUE(spinUntil([&] { return asked.isReady(); }));
    }

    PrivateBus bus;
    QDBusConnection own = bus.connect();
    std::unique_ptr<StandInNotifications> daemon = std::make_unique<StandInNotifications>(bus.connect());
    std::vector<NotificationResponse> responses;
    std::unique_ptr<DesktopNotifications> center = std::make_unique<DesktopNotifications>(own);
};

TEST_F(DesktopNotificationsTest, asksForWhatTheProgramMeans) {
    show(reminder());
    EXPECT_EQ(daemon->signatures, QStringList{u"susssasa{sv}i"_s});
    const auto& asked = daemon->notified.at(0);
    EXPECT_EQ(asked.program, u"Corvellan Bram"_s);
    EXPECT_EQ(asked.replaces, 0U);
    EXPECT_EQ(asked.summary, u"Meeting starting soon"_s);
    // This service does not read bodies as markup.
    EXPECT_EQ(asked.body, u"Demo <with> Ann & Bob\nStart coaching with Corvellan Bram?"_s);
    EXPECT_EQ(asked.actions, QStringList({u"default"_s, u"Open"_s, u"START_COACHING"_s, u"Start Coaching"_s}));
    EXPECT_EQ(asked.hints, QVariantMap({{u"desktop-entry"_s, u"com.teskara.CorvellanBram"_s},
                                        {u"sound-name"_s, u"message-new-instant"_s}}));
    EXPECT_EQ(asked.timeout, -1);
}

TEST_F(DesktopNotificationsTest, escapesABodyThatIsReadAsMarkup) {
    daemon->capabilities = {QStringList{u"body"_s, u"body-markup"_s, u"actions"_s}};
    show(reminder());
    EXPECT_EQ(daemon->notified.at(0).body, u"Demo &lt;with&gt; Ann &amp; Bob\nStart coaching with Corvellan Bram?"_s);
    EXPECT_EQ(daemon->notified.at(0).summary, u"Meeting starting soon"_s);
}

TEST_F(DesktopNotificationsTest, readsNoMarkupIntoCapabilitiesOfAnotherType) {
    for (const QVariantList& capabilities :
         {QVariantList{}, QVariantList{u"body-markup"_s}, QVariantList{7},
          QVariantList{QStringList{u"body-markup"_s}, 1}, QVariantList{QVariantMap{{u"body-markup"_s, true}}}}) {
        daemon->capabilities = capabilities;
        show(reminder());
        EXPECT_TRUE(daemon->notified.back().body.contains(u'<'));
    }
}

TEST_F(DesktopNotificationsTest, leavesOutWhatIsEmpty) {
    auto request = reminder();
    request.subtitle.clear();
    request.playsDefaultSound = false;
    request.categoryIdentifier = u"UNKNOWN"_s;
    show(request);
    EXPECT_EQ(daemon->notified.at(0).body, u"Start coaching with Corvellan Bram?"_s);
    EXPECT_EQ(daemon->notified.at(0).actions, QStringList({u"default"_s, u"Open"_s}));
    EXPECT_EQ(daemon->notified.at(0).hints,
              QVariantMap({{u"desktop-entry"_s, u"com.teskara.CorvellanBram"_s}, {u"suppress-sound"_s, true}}));

    request.subtitle = u"Only this"_s;
    request.body.clear();
    show(request);
    EXPECT_EQ(daemon->notified.at(1).body, u"Only this"_s);
}

TEST_F(DesktopNotificationsTest, textsCanHoldAnything) {
    auto request = reminder();
    request.title = QString{QChar{0xD800}} + u"\u0001\u202E"_s;
    request.subtitle = QString{200'000, u'x'};
    show(request);
    EXPECT_EQ(daemon->notified.size(), 1U);
    EXPECT_TRUE(own.isConnected());
}

TEST_F(DesktopNotificationsTest, anActionComesWithItsUserInfoAndToken) {
    const uint number = show(reminder());
    daemon->tell(u"ActivationToken"_s, {number, u"token 1"_s});
    daemon->act(number, u"START_COACHING"_s);
    daemon->close(number);
    ASSERT_TRUE(spinUntil([this] { return responses.size() == 1; }));
    EXPECT_EQ(responses[0].actionIdentifier, u"START_COACHING"_s);
    EXPECT_EQ(responses[0].userInfo, reminder().userInfo);
    EXPECT_EQ(responses[0].activationToken, u"token 1"_s);
    // Answered: it needs no place on the screen any more.
    EXPECT_TRUE(spinUntil([&] { return daemon->closed == std::vector{number}; }));
}

TEST_F(DesktopNotificationsTest, aClickOnTheNotificationItselfIsTheDefaultAction) {
    daemon->act(show(reminder()), u"default"_s);
    ASSERT_TRUE(spinUntil([this] { return responses.size() == 1; }));
    EXPECT_EQ(responses[0].actionIdentifier, defaultNotificationAction);
    EXPECT_EQ(responses[0].activationToken, QString{});
}

TEST_F(DesktopNotificationsTest, aNotificationIsAnsweredAtMostOnce) {
    const uint number = show(reminder());
    daemon->act(number, u"default"_s);
    daemon->act(number, u"START_COACHING"_s);
    daemon->act(number, u"default"_s);
    settleBus();
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].actionIdentifier, u"default"_s);
}

TEST_F(DesktopNotificationsTest, whatWasClosedHasNoAnswer) {
    const uint number = show(reminder());
    daemon->close(number);
    daemon->act(number, u"default"_s);
    settleBus();
    EXPECT_TRUE(responses.empty());
}

TEST_F(DesktopNotificationsTest, onlyOurNotificationsAnswer) {
    const uint number = show(reminder());
    for (const uint foreign : {0U, number - 1, number + 1, 4'294'967'295U})
        daemon->act(foreign, u"default"_s);
    daemon->act(number, u"DELETE_EVERYTHING"_s);
    daemon->act(number, {});
    daemon->tell(u"ActionInvoked"_s, {});
    daemon->tell(u"ActionInvoked"_s, {number});
    daemon->tell(u"ActionInvoked"_s, {static_cast<int>(number), u"default"_s});
    daemon->tell(u"ActionInvoked"_s, {QString::number(number), u"default"_s});
    daemon->tell(u"ActionInvoked"_s, {number, 1});
    daemon->tell(u"ActionInvoked"_s, {number, u"default"_s, true});
    daemon->tell(u"NotificationClosed"_s, {number});
    daemon->tell(u"NotificationClosed"_s, {number, u"2"_s});
    daemon->tell(u"NotificationClosed"_s, {number + 1, 1U});
    daemon->tell(u"ActivationToken"_s, {number, 5U});
    daemon->tell(u"ActivationToken"_s, {number + 1, u"foreign"_s});
    settleBus();
    EXPECT_TRUE(responses.empty());
    // None of it has touched ours.
    daemon->act(number, u"default"_s);
    ASSERT_TRUE(spinUntil([this] { return responses.size() == 1; }));
    EXPECT_EQ(responses[0].activationToken, QString{});
}

TEST_F(DesktopNotificationsTest, anotherProgramCantAnswerForTheService) {
    const uint number = show(reminder());
    QDBusConnection intruder = bus.connect();
    for (const QString& signal : {u"ActionInvoked"_s, u"ActivationToken"_s}) {
        auto forged = QDBusMessage::createTargetedSignal(own.baseService(), StandInNotifications::path(),
                                                         StandInNotifications::name(), signal);
        forged.setArguments({number, u"default"_s});
        ASSERT_TRUE(intruder.send(forged));
    }
    auto closed = QDBusMessage::createTargetedSignal(own.baseService(), StandInNotifications::path(),
                                                     StandInNotifications::name(), u"NotificationClosed"_s);
    closed.setArguments({number, 1U});
    ASSERT_TRUE(intruder.send(closed));
    // Its answer shows that the bus has passed all of them on.
    intruder.call(
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s));
    settleBus();
    EXPECT_TRUE(responses.empty());
    daemon->act(number, u"default"_s);
    ASSERT_TRUE(spinUntil([this] { return responses.size() == 1; }));
    EXPECT_EQ(responses[0].activationToken, QString{});
}

TEST_F(DesktopNotificationsTest, anAnswerMayBeQuickerThanTheReply) {
    daemon->notify = [this](const QDBusMessage& call) {
        daemon->tell(u"ActivationToken"_s, {99U, u"token"_s});
        daemon->act(98U, u"START_COACHING"_s);
        daemon->act(99U, u"default"_s);
        daemon->close(99U);
        daemon->reply(call, {99U});
    };
    center->add(reminder());
    ASSERT_TRUE(spinUntil([this] { return responses.size() == 1; }));
    EXPECT_EQ(responses[0].actionIdentifier, u"default"_s);
    EXPECT_EQ(responses[0].activationToken, u"token"_s);
    settleBus();
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(DesktopNotificationsTest, whatIsClosedBeforeTheReplyIsNotRemembered) {
    daemon->notify = [this](const QDBusMessage& call) {
        daemon->close(99U);
        daemon->reply(call, {99U});
    };
    show(reminder());
    daemon->act(99U, u"default"_s);
    settleBus();
    EXPECT_TRUE(responses.empty());
}

TEST_F(DesktopNotificationsTest, aRequestReplacesTheShownOneOfItsIdentifier) {
    const uint number = show(reminder());
    auto second = reminder();
    second.userInfo = {{u"company"_s, u"second"_s}};
    show(second);
    EXPECT_EQ(daemon->notified.at(1).replaces, number);
    show(reminder(u"meeting-2"_s));
    EXPECT_EQ(daemon->notified.at(2).replaces, 0U);

    daemon->act(number, u"default"_s);
    settleBus();
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].userInfo.value(u"company"_s), u"second"_s);
}

TEST_F(DesktopNotificationsTest, requestsInARowReplaceEachOther) {
    center->add(reminder());
    center->add(reminder());
    center->add(reminder(u"meeting-2"_s));
    ASSERT_TRUE(spinUntil([this] { return daemon->notified.size() == 3; }));
    EXPECT_EQ(daemon->notified[0].replaces, 0U);
    EXPECT_EQ(daemon->notified[1].replaces, 7U);
    EXPECT_EQ(daemon->notified[2].replaces, 0U);
}

TEST_F(DesktopNotificationsTest, aReplacementUnderANewNumberLeavesTheOldOneSilent) {
    daemon->notify = [this](const QDBusMessage& call) { daemon->reply(call, {daemon->nextNumber++}); };
    const uint first = show(reminder());
    const uint second = show(reminder());
    ASSERT_NE(first, second);
    daemon->act(first, u"default"_s);
    settleBus();
    EXPECT_TRUE(responses.empty());
    daemon->act(second, u"default"_s);
    settleBus();
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(DesktopNotificationsTest, whatIsGoneIsNotReplaced) {
    daemon->close(show(reminder()));
    settleBus();
    show(reminder());
    EXPECT_EQ(daemon->notified.at(1).replaces, 0U);
    daemon->act(daemon->nextNumber - 1, u"default"_s);
    settleBus();
    show(reminder());
    EXPECT_EQ(daemon->notified.at(2).replaces, 0U);
}

TEST_F(DesktopNotificationsTest, aServiceThatGivesOneNumberTwiceAnswersForTheLater) {
    daemon->notify = [this](const QDBusMessage& call) { daemon->reply(call, {5U}); };
    show(reminder(u"meeting-1"_s));
    show(reminder(u"meeting-2"_s));
    daemon->act(5U, u"default"_s);
    daemon->act(5U, u"default"_s);
    settleBus();
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].userInfo.value(u"meetingId"_s), u"meeting-2"_s);
}

TEST_F(DesktopNotificationsTest, repliesThatMakeNoSenseShowNothing) {
    for (const QVariantList& answer : {QVariantList{}, QVariantList{0U}, QVariantList{-1}, QVariantList{u"8"_s},
                                       QVariantList{8U, 8U}, QVariantList{QVariantMap{}}}) {
        daemon->notify = [&](const QDBusMessage& call) { daemon->reply(call, answer); };
        show(reminder());
    }
    daemon->notify = [this](const QDBusMessage& call) { daemon->refuse(call); };
    show(reminder());
    for (const uint number : {0U, 8U, 4'294'967'295U})
        daemon->act(number, u"default"_s);
    settleBus();
    EXPECT_TRUE(responses.empty());
    EXPECT_EQ(daemon->notified.back().replaces, 0U);
}

TEST_F(DesktopNotificationsTest, oldOnesAreForgottenWhereNoneIsEverClosed) {
    const uint first = show(reminder(u"meeting-0"_s));
    for (int i = 1; i <= 64; ++i)
        center->add(reminder(u"meeting-"_s + QString::number(i)));
    ASSERT_TRUE(spinUntil([this] { return daemon->notified.size() == 65; }));
    settleBus();
    daemon->act(first, u"default"_s);
    daemon->act(first + 1, u"default"_s);
    settleBus();
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].userInfo.value(u"meetingId"_s), u"meeting-1"_s);
}

TEST_F(DesktopNotificationsTest, withoutAServiceNothingHappens) {
    daemon.reset();
    center->add(reminder());
    EXPECT_EQ(complete(center->requestAuthorization()), NotificationAuthorization::unknown);
    // One that comes later is asked for later ones.
    daemon = std::make_unique<StandInNotifications>(bus.connect());
    show(reminder(u"meeting-2"_s));
    EXPECT_EQ(daemon->notified.size(), 1U);
    daemon->act(daemon->nextNumber - 1, u"default"_s);
    EXPECT_TRUE(spinUntil([this] { return responses.size() == 1; }));
}

TEST_F(DesktopNotificationsTest, aServiceThatReturnsKnowsNothingOfEarlierOnes) {
    const uint number = show(reminder());
    daemon.reset();
    daemon = std::make_unique<StandInNotifications>(bus.connect());
    daemon->act(number, u"default"_s);
    settleBus();
    EXPECT_TRUE(responses.empty());
    show(reminder());
    EXPECT_EQ(daemon->notified.at(0).replaces, 0U);
    daemon->act(daemon->nextNumber - 1, u"default"_s);
    EXPECT_TRUE(spinUntil([this] { return responses.size() == 1; }));
}

TEST_F(DesktopNotificationsTest, aServiceThatEndsWhileItIsAskedShowsNothing) {
    daemon->notify = [this](const QDBusMessage&) {
        mainExecutor().post([this] {
            const QString connection = daemon->connectionName();
            daemon.reset();
            QDBusConnection::disconnectFromBus(connection);
        });
    };
    center->add(reminder());
    ASSERT_TRUE(spinUntil([this] { return !daemon; }));
    daemon = std::make_unique<StandInNotifications>(bus.connect());
    show(reminder(u"meeting-2"_s));
    EXPECT_EQ(daemon->notified.size(), 1U);
}

TEST_F(DesktopNotificationsTest, aServiceThatAnswersIsPermission) {
    EXPECT_EQ(complete(center->authorization()), NotificationAuthorization::authorized);
    EXPECT_EQ(complete(center->requestAuthorization()), NotificationAuthorization::authorized);
    EXPECT_TRUE(daemon->notified.empty());
}

TEST_F(DesktopNotificationsTest, aServiceThatHoldsNotificationsBackIsNone) {
    daemon->inhibited = true;
    EXPECT_EQ(complete(center->authorization()), NotificationAuthorization::denied);
    for (const QVariant& other : {QVariant{false}, QVariant{1}, QVariant{u"true"_s}, QVariant{QStringList{}}}) {
        daemon->inhibited = other;
        EXPECT_EQ(complete(center->authorization()), NotificationAuthorization::authorized);
    }
}

TEST_F(DesktopNotificationsTest, aServiceThatDoesNotAnswerAsItShouldIsUnknown) {
    for (const QVariantList& information :
         {QVariantList{}, QVariantList{u"a"_s, u"b"_s, u"c"_s}, QVariantList{1, 2, 3, 4},
          QVariantList{QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s}}}) {
        daemon->information = information;
        EXPECT_EQ(complete(center->authorization()), NotificationAuthorization::unknown);
    }
}

TEST_F(DesktopNotificationsTest, withoutABusNothingHappens) {
    DesktopNotifications none{QDBusConnection{u"no such connection"_s}};
    none.add(reminder());
    EXPECT_EQ(complete(none.authorization()), NotificationAuthorization::unknown);
}

TEST_F(DesktopNotificationsTest, theQuestionOutlivesTheCenter) {
    auto asked = center->authorization();
    center.reset();
    EXPECT_EQ(complete(std::move(asked)), NotificationAuthorization::authorized);
}

TEST_F(DesktopNotificationsTest, whoIsToldMayDestroyTheCenter) {
    center->didReceive = [this](const NotificationResponse& response) {
        responses.push_back(response);
        center.reset();
    };
    daemon->notify = [this](const QDBusMessage& call) {
        daemon->act(99U, u"default"_s);
        daemon->act(99U, u"default"_s);
        daemon->reply(call, {99U});
    };
    center->add(reminder());
    EXPECT_TRUE(spinUntil([this] { return !center; }));
    settle();
    EXPECT_EQ(responses.size(), 1U);
}

}  // namespace

}  // namespace corvellan::test
