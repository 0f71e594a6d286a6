// Training sessions over real sockets.

#include "Models/Protocol.h"
#include "SandboxFixture.h"

namespace corvellan::test {

namespace {

using namespace std::chrono_literals;

constexpr const char* plainTraining =
    R"({"type":"start_session","sim_mode":true,"scenario":"haulier_spreadsheets","disc_type":"dominant"})";

/// What a buyer has said in one go.
struct Reply {
    QString text;
    int tokens = 0;
    int latencyMs = 0;
};

class TrainingTest : public SandboxFixture {
protected:
    void startSeeded() { SandboxFixture::start({.buyerSeed = 1}); }
    void begin(WireClient& client, const char* message = plainTraining) {
        client.send(message);
        ASSERT_EQ(client.next()[u"type"_s], u"session_started"_s);
    }
    void say(WireClient& client, const QString& text) {
        const QJsonObject message{{u"type"_s, u"transcript"_s}, {u"source"_s, u"mic"_s}, {u"text"_s, text}};
        client.send(QJsonDocument{message}.toJson(QJsonDocument::Compact));
        // The sandbox has taken it; the clock stands meanwhile.
        ASSERT_TRUE(spinUntil([&] { return logs(u"mic: "_s + text); }));
    }
    /// The next reply to its end, with time going on; tips between are kept in `tips`.
    Reply hear(WireClient& client) {
        Reply reply;
        bool isDone = false;
        EXPECT_TRUE(spinUntil([&] {
            while (!client.messages().isEmpty() && !isDone) {
                const auto message = client.messages().takeFirst();
                const auto type = message[u"type"_s].toString();
                if (type == u"counterpart_token") {
                    reply.text += message[u"delta"_s].toString();
                    ++reply.tokens;
                } else if (type == u"counterpart_done") {
                    reply.latencyMs = message[u"latency_ms"_s].toInt();
                    isDone = true;
                } else if (type == u"coaching") {
                    tips.append(message);
                }
            }
            if (!isDone)
                settleAfter(clock, 20ms);
            return isDone;
        }));
        return reply;
    }
    [[nodiscard]] QStringList tipTexts() const {
        QStringList texts;
        for (const auto& tip : tips)
            texts.append(tip[u"message"_s].toString());
        return texts;
    }
    [[nodiscard]] const sandbox::BuyerScenario& scenario() const { return *book.find(u"haulier_spreadsheets"_s); }

    sandbox::BuyerBook book = sandbox::BuyerBook::shipped();
    QList<QJsonObject> tips;
};

}  // namespace

TEST_F(TrainingTest, theBuyerOpensTheCallWordByWord) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client);
    const auto opening = hear(client);
    EXPECT_TRUE(opening.text.endsWith(scenario().opening)) << qPrintable(opening.text);
    EXPECT_EQ(opening.tokens, opening.text.split(u' ').size());
    EXPECT_EQ(opening.latencyMs, 500);
}

TEST_F(TrainingTest, nothingIsSaidBeforeTheBuyerHasThought) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client);
    settleAfter(clock, 499ms);
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s);
    settleAfter(clock, 1ms);
    EXPECT_EQ(client.next()[u"type"_s], u"counterpart_token"_s);
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s) << "one word at a time";
}

TEST_F(TrainingTest, theLogTellsEachSentenceWhenItsLastWordIsSent) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client);
    const QString greeting = u"says: Tom Berg here."_s;
    const QString next = u"says: Make it quick."_s;
    QString said;
    const auto take = [&] {
        while (!client.messages().isEmpty())
            said += client.messages().takeFirst()[u"delta"_s].toString();
        return logs(greeting);
    };
    EXPECT_TRUE(spinUntil([&] {
        const bool isLogged = take();
        if (!isLogged)
            settleAfter(clock, 10ms);
        return isLogged;
    }));
    EXPECT_TRUE(spinUntil([&] { return take() && said == u"Tom Berg here."; })) << qPrintable(said);
    EXPECT_FALSE(logs(next));
    hear(client);
    EXPECT_TRUE(logs(next));
}

TEST_F(TrainingTest, aCallFromTheOpeningToItsSummary) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client);
    hear(client);
    say(client, u"How do you plan your tours today?"_s);
    const auto answer = hear(client);
    EXPECT_TRUE(answer.text.contains(scenario().pains[0].says)) << qPrintable(answer.text);
    say(client, u"Who signs off a purchase?"_s);
    EXPECT_TRUE(hear(client).text.contains(scenario().answers[1].says));
    client.send(R"({"type":"end_session"})");
    QJsonObject message = client.next();
    while (!message.isEmpty() && message[u"type"_s] != u"summary"_s) {
        if (message[u"type"_s] == u"coaching"_s)
            tips.append(message);
        message = client.next();
    }
    EXPECT_FALSE(tips.isEmpty());
    const auto summary = message;
    ASSERT_EQ(summary[u"type"_s], u"summary"_s);
    const auto meddic = summary[u"meddic"_s].toObject();
    EXPECT_TRUE(meddic[u"identify_pain"_s].toBool());
    EXPECT_TRUE(meddic[u"economic_buyer"_s].toBool());
    EXPECT_FALSE(meddic[u"champion"_s].toBool());
    const auto points = summary[u"coaching_points"_s].toVariant().toStringList();
    EXPECT_TRUE(points.contains(u"You practised with the dominant buyer that you chose."_s));
    EXPECT_TRUE(points.contains(u"Troubles found: 1 of 3. Open questions 2, closed questions 0."_s));
    EXPECT_TRUE(points.contains(u"You never asked for the budget openly."_s));
    const auto transcript = summary[u"transcript"_s].toVariant().toStringList();
    EXPECT_TRUE(transcript.contains(u"[Mic] How do you plan your tours today?"_s));
    EXPECT_TRUE(transcript.contains(u"[Audio] "_s + answer.text));
    EXPECT_EQ(summary[u"turns"_s].toInt(), 5);
}

TEST_F(TrainingTest, aTipFollowsEachReplyAndNamesTheEvidence) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client);
    hear(client);
    tips.clear();
    say(client, u"How many hours does that cost you each week?"_s);
    hear(client);
    const auto tip = client.next(u"coaching"_s);
    const auto state = tip[u"state"_s].toObject();
    EXPECT_TRUE(state[u"meddic"_s].toObject()[u"metrics"_s].toBool());
    EXPECT_EQ(state[u"meddic_evidence"_s].toArray().at(0).toString(), scenario().answers[0].says);
}

TEST_F(TrainingTest, whoInterruptsHasHeardOnlySoMuch) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client);
    hear(client);
    say(client, u"How do you plan your tours today?"_s);
    settleAfter(clock, 500ms);
    EXPECT_EQ(client.next(u"counterpart_token"_s)[u"type"_s], u"counterpart_token"_s);
    say(client, u"I see."_s);
    EXPECT_EQ(client.next(u"counterpart_done"_s)[u"latency_ms"_s].toInt(), 500);
    const auto tip = client.next(u"coaching"_s);
    EXPECT_FALSE(tip[u"state"_s].toObject()[u"meddic"_s].toObject()[u"identify_pain"_s].toBool());
    EXPECT_FALSE(hear(client).text.contains(scenario().pains[0].says));
}

TEST_F(TrainingTest, theGameTellsItsScoreInTipsAndInTheState) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client, R"({"type":"start_session","sim_mode":true,"scenario":"cold_call","game_mode":true})");
    hear(client);
    tips.clear();
    say(client, u"What annoys you most?"_s);
    hear(client);
    say(client, u"Does Moira sign off?"_s);
    hear(client);
    EXPECT_TRUE(tipTexts().contains(u"Open question on pain: +10. Score 10."_s)) << qPrintable(tipTexts().join(u'\n'));
    EXPECT_TRUE(tipTexts().contains(u"Closed question on budget owner: -5. Score 5."_s));
    EXPECT_EQ(tips.last()[u"state"_s].toObject()[u"call_phase"_s], u"Score 5"_s);
    client.send(R"({"type":"end_session"})");
    EXPECT_TRUE(client.next(u"summary"_s)[u"coaching_points"_s].toVariant().toStringList().contains(
        u"Question game: score 5, with 1 open and 1 closed MEDDIC questions."_s));
}

TEST_F(TrainingTest, theSameSeedGivesTheSameCallAgain) {
    startSeeded();
    QStringList calls;
    for (int round = 0; round < 2; ++round) {
        WireClient client{coachUrl()};
        lines.clear();
        begin(client, R"({"type":"start_session","sim_mode":true,"scenario":"price_first","disc_type":"unknown"})");
        QString call = hear(client).text;
        say(client, u"What bothers you?"_s);
        calls.append(call + u'\n' + hear(client).text);
    }
    EXPECT_EQ(calls[0], calls[1]);
}

TEST_F(TrainingTest, aScenarioThatNobodyKnowsIsRefused) {
    startSeeded();
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session","sim_mode":true,"scenario":"nowhere"})");
    const auto answer = client.next();
    EXPECT_EQ(answer[u"type"_s], u"error"_s);
    EXPECT_EQ(answer[u"message"_s], u"there is no scenario \"nowhere\""_s);
    client.send(plainTraining);
    EXPECT_EQ(client.next()[u"type"_s], u"session_started"_s);
}

TEST_F(TrainingTest, withoutAScenarioTheFirstOneIsPlayed) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client, R"({"type":"start_session","sim_mode":true})");
    EXPECT_TRUE(hear(client).text.endsWith(scenario().opening));
}

TEST_F(TrainingTest, aBuyerFallsSilentWithTheConnection) {
    startSeeded();
    {
        WireClient client{coachUrl()};
        begin(client);
        settleAfter(clock, 600ms);
        client.socket().close();
        ASSERT_TRUE(client.closes());
    }
    ASSERT_TRUE(spinUntil([&] { return logs(u"lost within a session"_s); }));
    settleAfter(clock, 60s);
    EXPECT_FALSE(logs(u"system: "_s));
}

TEST_F(TrainingTest, anOrdinaryCallHasNoBuyer) {
    startSeeded();
    WireClient client{coachUrl()};
    begin(client, R"({"type":"start_session","sim_mode":false})");
    settleAfter(clock, 60s);
    client.send(R"({"type":"ping"})");
    EXPECT_EQ(client.next()[u"type"_s], u"pong"_s);
}

TEST_F(TrainingTest, theListOfScenariosComesFromTheBuyersFile) {
    auto file = sandbox::BuyerBook::shipped();
    startSeeded();
    EXPECT_EQ(get(u"/scenarios"_s).object(), file.scenarioList());
}

}  // namespace corvellan::test
