#include "App/SingleInstance.h"

#include <gtest/gtest.h>

#include <atomic>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QJsonDocument>
#include <QJsonObject>
#include <thread>

#include "App/ProgramObject.h"
#include "Base/Diagnostics.h"
#include "Support/PrivateBus.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Outcome = SingleInstance::Outcome;

class SingleInstanceTest : public testing::Test {
protected:
    /// As another process would: the first one's thread goes on answering.
    Outcome claimElsewhere(const QString& token, std::chrono::milliseconds patience = 20s) {
        std::optional<Outcome> outcome;
        std::atomic<bool> isDone = false;
        std::thread elsewhere{[&outcome, &isDone, token, patience, connection = bus.connect()] {
            Diagnostics counters;
            ProgramObject other{counters};
            outcome = SingleInstance{connection, patience}.claim(other, token);
            isDone = true;
        }};
        spinUntil([&isDone] { return isDone.load(); });
        elsewhere.join();
        return *outcome;
    }

    PrivateBus bus;
    QDBusConnection connection = bus.connect();
    Diagnostics diagnostics;
    ProgramObject object{diagnostics};
    SingleInstance instance{connection};
};

TEST_F(SingleInstanceTest, theFirstStartTakesTheName) {
    EXPECT_EQ(instance.claim(object, {}), Outcome::first);

    EXPECT_TRUE(bus.connect().interface()->isServiceRegistered(u"com.teskara.CorvellanBram"_s));
}

TEST_F(SingleInstanceTest, aLaterStartBringsTheFirstToTheFront) {
    QStringList tokens;
    object.onActivate = [&tokens](const QString& token) { tokens.append(token); };
    ASSERT_EQ(instance.claim(object, {}), Outcome::first);

    EXPECT_EQ(claimElsewhere(u"token-7"_s), Outcome::handedOver);
    EXPECT_EQ(claimElsewhere({}), Outcome::handedOver);

    EXPECT_EQ(tokens, (QStringList{u"token-7"_s, QString{}}));
}

TEST_F(SingleInstanceTest, aNameWhoseHolderDoesNotAnswerIsUnreachable) {
    ASSERT_TRUE(connection.registerService(SingleInstance::name));

    // Nothing is exported there.
    EXPECT_EQ(claimElsewhere({}), Outcome::unreachable);
}

TEST_F(SingleInstanceTest, theNameIsFreeAgainWhenItsHolderHasGone) {
    {
        const QDBusConnection gone = bus.connect();
        Diagnostics counters;
        ProgramObject other{counters};
        ASSERT_EQ((SingleInstance{gone}.claim(other, {})), Outcome::first);
        QDBusConnection::disconnectFromBus(gone.name());
    }
    ASSERT_TRUE(spinUntil([this] { return !connection.interface()->isServiceRegistered(SingleInstance::name); }));

    EXPECT_EQ(instance.claim(object, {}), Outcome::first);
}

TEST_F(SingleInstanceTest, withoutABusEveryStartIsTheFirst) {
    SingleInstance alone{QDBusConnection{u"no such connection"_s}};

    EXPECT_EQ(alone.claim(object, {}), Outcome::first);
}

TEST_F(SingleInstanceTest, answersWithItsCounters) {
    diagnostics.recordsStored = 3;
    ASSERT_EQ(instance.claim(object, {}), Outcome::first);

    const QDBusPendingReply<QString> reply = bus.connect().asyncCall(QDBusMessage::createMethodCall(
        SingleInstance::name, SingleInstance::path, u"com.teskara.CorvellanBram"_s, u"diagnostics"_s));
    ASSERT_TRUE(spinUntil([&reply] { return reply.isFinished(); }));

    EXPECT_EQ(QJsonDocument::fromJson(reply.value().toUtf8()).object().value("records_stored"_L1).toInt(), 3);
}

}  // namespace corvellan::test
