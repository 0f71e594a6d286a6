#include <QTemporaryDir>

#include "ProviderFixture.h"
#include "Sandbox/WavFile.h"

namespace corvellan::test {

namespace {

class ProviderConnectionTest : public ProviderFixture {};

}  // namespace

TEST_F(ProviderConnectionTest, turnsAnUtteranceIntoALineWithItsLength) {
    start();
    const auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.silence(0.5).tone(3.2).silence(2.1));
    EXPECT_EQ(client->next()[u"type"_s], u"transcription_session.created"_s);
    const auto updated = client->next();
    EXPECT_EQ(updated[u"type"_s], u"transcription_session.updated"_s);
    EXPECT_EQ(updated[u"session"_s].toObject()[u"turn_detection"_s].toObject()[u"silence_duration_ms"_s].toInt(), 2000);
    const auto begin = client->next();
    EXPECT_EQ(begin[u"type"_s], u"input_audio_buffer.speech_started"_s);
    EXPECT_EQ(begin[u"audio_start_ms"_s].toInt(), 500);
    const auto end = client->next();
    EXPECT_EQ(end[u"type"_s], u"input_audio_buffer.speech_stopped"_s);
    EXPECT_EQ(end[u"audio_end_ms"_s].toInt(), 3700);
    EXPECT_EQ(client->next()[u"type"_s], u"input_audio_buffer.committed"_s);
    const auto done = client->next();
    EXPECT_EQ(done[u"type"_s], completed);
    EXPECT_EQ(done[u"transcript"_s], u"(3.2 s of speech)"_s);
}

TEST_F(ProviderConnectionTest, waitsForTheSilenceThatTheClientAskedFor) {
    start();
    const auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.tone(1).silence(1.9).tone(1).silence(1.9));
    client->send("marker");
    const auto marker = client->next(u"error"_s);
    EXPECT_FALSE(marker.isEmpty());
    speak(*client, GeneratedAudio{}.silence(0.2));
    EXPECT_EQ(client->next(completed)[u"transcript"_s], u"(3.9 s of speech)"_s);
}

TEST_F(ProviderConnectionTest, takesTheLinesOfAScriptSideBySide) {
    sandbox::SandboxOptions options;
    auto script = sandbox::CallScript::parse(
        "mic | 0:01 ~ 1.0 | Good morning to you.\n"
        "system | 0:03 ~ 2.0 | Good morning.\n"
        "mic | 0:07 ~ 3.0 | How are you?\n");
    ASSERT_TRUE(script);
    options.texts = sandbox::scriptTexts(*script);
    start(std::move(options));
    const auto mic = side();
    const auto system = connectSide(u"_system"_s);
    mic->send(update);
    system->send(update);
    speak(*mic, GeneratedAudio{}.tone(1.2).silence(2.1).tone(2.5).silence(2.1));
    speak(*system, GeneratedAudio{}.tone(1.6).silence(2.1));

    QString told;
    QJsonObject message;
    do {
        message = mic->next();
        if (message[u"type"_s] == delta)
            told += message[u"delta"_s].toString();
    } while (!message.isEmpty() && message[u"type"_s] != completed);
    EXPECT_EQ(message[u"transcript"_s], u"Good morning to you."_s);
    EXPECT_EQ(told, u"Good morning to you."_s);
    EXPECT_EQ(mic->next(completed)[u"transcript"_s], u"How are you?"_s);
    EXPECT_EQ(system->next(completed)[u"transcript"_s], u"Good morning."_s);
}

TEST_F(ProviderConnectionTest, keepsALineBackThatDoesNotFit) {
    sandbox::SandboxOptions options;
    auto script = sandbox::CallScript::parse("mic | 0:01 ~ 2.0 | Good morning.\n");
    ASSERT_TRUE(script);
    options.texts = sandbox::scriptTexts(*script);
    start(std::move(options));
    const auto client = side();
    client->send(update);
    speak(*client, GeneratedAudio{}.tone(1.4).silence(2.1).tone(2.4).silence(2.1));
    const auto done = client->next(completed);
    EXPECT_EQ(done[u"transcript"_s], u"Good morning."_s);
    EXPECT_EQ(done[u"item_id"_s], u"item_0002"_s);
    EXPECT_TRUE(logs(u"fits no line of the script: line 1 has 2.0 s"_s));
}

TEST_F(ProviderConnectionTest, keepsTheAudioOfEachSideAndCountsIt) {
    QTemporaryDir folder;
    sandbox::SandboxOptions options;
    options.keepAudioFolder = folder.path();
    start(std::move(options));
    const auto mic = side();
    const auto system = connectSide(u"_system"_s);
    const auto said = GeneratedAudio{}.tone(0.25);
    const auto heard = GeneratedAudio{}.tone(0.1, 0.5, 1000);
    speak(*mic, said);
    speak(*system, heard);
    mic->send("marker");
    system->send("marker");
    EXPECT_FALSE(mic->next(u"error"_s).isEmpty());
    EXPECT_FALSE(system->next(u"error"_s).isEmpty());

    const QString session = folder.filePath(started[u"session_id"_s].toString());
    const auto micWav = sandbox::readWav(session + u"/mic.wav"_s);
    ASSERT_TRUE(micWav);
    EXPECT_EQ(micWav->sampleRateHertz, 24'000);
    EXPECT_EQ(micWav->samples, said.samples());
    const auto systemWav = sandbox::readWav(session + u"/system.wav"_s);
    ASSERT_TRUE(systemWav);
    EXPECT_EQ(systemWav->samples, heard.samples());

    const auto figures = get(u"/sandbox/audio"_s).array();
    ASSERT_EQ(figures.size(), 2);
    const auto first = figures[0].toObject();
    EXPECT_EQ(first[u"side"_s], u"mic"_s);
    EXPECT_EQ(first[u"bytes"_s].toInt(), said.pcm().size());
    EXPECT_EQ(first[u"appends"_s].toInt(), 3);
    EXPECT_EQ(first[u"faults"_s].toInt(), 1);
    EXPECT_EQ(first[u"wav"_s], session + u"/mic.wav"_s);
}

TEST_F(ProviderConnectionTest, refusesAnUnknownTokenBeforeTheHandshake) {
    start();
    WireClient client{QUrl{u"ws://127.0.0.1:%1/v1/realtime?intent=transcription"_s.arg(box->providerPort())},
                      u"ek_made_up"_s};
    EXPECT_FALSE(client.connects());
    EXPECT_TRUE(client.errorString().contains(u"401"_s)) << client.errorString().toStdString();
}

TEST_F(ProviderConnectionTest, takesATokenOnce) {
    start();
    const auto first = side();
    ASSERT_TRUE(first->connects());
    const auto second = connectSide({});
    EXPECT_FALSE(second->connects());
}

TEST_F(ProviderConnectionTest, refusesTheTokensOfASessionThatIsOver) {
    start();
    const auto mic = side();
    ASSERT_TRUE(mic->connects());
    coach->send(R"({"type":"end_session"})");
    EXPECT_FALSE(coach->next(u"summary"_s).isEmpty());
    EXPECT_FALSE(connectSide(u"_system"_s)->connects());
    // What is connected goes on.
    mic->send("marker");
    EXPECT_FALSE(mic->next(u"error"_s).isEmpty());
}

TEST_F(ProviderConnectionTest, refusesOtherPathsQueriesAndHeaders) {
    start();
    const auto token = [&] {
        const auto client = std::make_unique<WireClient>(coachUrl());
        client->send(R"({"type":"start_session"})");
        coach = std::make_unique<WireClient>(coachUrl());
        return client->next()[u"openai_ephemeral_token"_s].toString();
    };
    const auto url = [&](const QString& rest) {
        return QUrl{u"ws://127.0.0.1:%1%2"_s.arg(box->providerPort()).arg(rest)};
    };
    EXPECT_FALSE((WireClient{url(u"/v1/other?intent=transcription"_s), token()}.connects()));
    EXPECT_FALSE((WireClient{url(u"/v1/realtime"_s), token()}.connects()));
    QNetworkRequest request{url(u"/v1/realtime?intent=transcription"_s)};
    request.setRawHeader("Authorization", "Bearer " + token().toLatin1());
    EXPECT_FALSE(WireClient{request}.connects());
    EXPECT_TRUE(logs(u"refused with 404"_s));
    EXPECT_TRUE(logs(u"OpenAI-Beta"_s));
}

}  // namespace corvellan::test
