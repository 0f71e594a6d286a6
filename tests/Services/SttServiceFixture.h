#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <QJsonDocument>
#include <QJsonObject>

#include "Services/SttService.h"
#include "Support/LogCapture.h"
#include "Support/LoopbackServer.h"
#include "Support/RawServer.h"
#include "Support/StreamReader.h"
#include "Support/TestLoop.h"

namespace corvellan::test {
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

enum class Where { inlineOnMain, onWorker };

/// Bytes of so much audio; `seed` tells chunks apart.
inline QByteArray audio(std::chrono::milliseconds length, char seed = 1) {
    return {static_cast<qsizetype>(length.count() * 48), seed};
}

/// The bytes of the append messages, in order; anything else fails the test.
inline QList<QByteArray> appended(const QStringList& texts) {
    QList<QByteArray> batches;
    for (const QString& text : texts.sliced(std::min<qsizetype>(1, texts.size()))) {
        const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
        EXPECT_EQ(message["type"_L1].toString(), u"input_audio_buffer.append"_s);
        batches.append(QByteArray::fromBase64(message["audio"_L1].toString().toLatin1()));
    }
    return batches;
}

inline SttEvent delta(const QString& text) {
    return {SttEvent::Delta{text}};
}
inline SttEvent final(const QString& text) {
    return {SttEvent::Final{text}};
}
inline SttEvent failure(const QString& message) {
    return {SttEvent::Failure{message}};
}

/// The transcription client beside a provider on loopback; every test runs with the service on the main
/// thread and on a thread of its own.
class SttServiceTest : public testing::TestWithParam<Where> {
protected:
    void SetUp() override {
        ASSERT_TRUE(provider.listen());
        if (GetParam() == Where::onWorker)
            worker = std::make_unique<WorkerThread>("live");
        stt = std::make_unique<SttService>(executor(), clock, side, provider.url(u"/default"_s).toString());
    }

    void TearDown() override {
        stt.reset();
        worker.reset();
        settle();
    }

    Executor& executor() { return worker ? worker->executor() : mainExecutor(); }

    /// Returns when everything that was handed to the service's executor so far has run.
    void drain() {
        settle();
        complete(executor().call([] {}));
    }

    /// Connected, with time gone by since construction so that the next chunk leaves at once.
    void connect() {
        clock.advance(1s);
        complete(stt->connect(u"ek_mic"_s, provider.url(u"/v1/realtime?intent=transcription"_s).toString()));
        ASSERT_TRUE(spinUntil([&] { return provider.texts().size() == 1; }));
    }

    /// As `connect`, to a provider that shows frames as they come.
    void connectRaw(RawServer& raw) {
        ASSERT_TRUE(raw.listen());
        clock.advance(1s);
        complete(stt->connect(u"ek_mic"_s, raw.url().toString()));
        ASSERT_TRUE(spinUntil([&] { return raw.texts().size() == 1; }));
    }

    /// Events from now on: the stream is installed when this returns.
    std::unique_ptr<StreamReader<SttEvent>> listen() {
        auto reader = std::make_unique<StreamReader<SttEvent>>(stt->events());
        drain();
        return reader;
    }

    void send(const QByteArray& pcm) { complete(stt->sendAudio({.pcm = pcm})); }

    /// Frames said in this order, and a marker behind them, so that silence shows.
    std::vector<SttEvent> eventsOf(const QStringList& frames) {
        const auto reader = listen();
        for (const QString& frame : frames)
            provider.say(frame);
        provider.say(marker);
        EXPECT_TRUE(
            spinUntil([&] { return !reader->values().empty() && reader->values().back() == delta(u"marker"_s); }));
        auto events = reader->values();
        if (!events.empty())
            events.pop_back();
        return events;
    }

    static inline const QString marker =
        u"{\"type\":\"conversation.item.input_audio_transcription.delta\",\"delta\":\"marker\"}"_s;

    static QString completed(const QString& jsonText) {
        return u"{\"type\":\"conversation.item.input_audio_transcription.completed\",\"transcript\":\"%1\"}"_s.arg(
            jsonText);
    }

    ManualClock clock;
    LogCapture log{u"STT"_s};
    LoopbackServer provider;
    Diagnostics::Side side;
    std::unique_ptr<WorkerThread> worker;
    std::unique_ptr<SttService> stt;
};

}  // namespace corvellan::test
