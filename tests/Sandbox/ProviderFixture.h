#pragma once

#include "GeneratedAudio.h"
#include "SandboxFixture.h"

namespace corvellan::test {

inline constexpr const char* update = R"({"type":"transcription_session.update","session":{"input_audio_format":"pcm16",
    "input_audio_transcription":{"model":"gpt-4o-transcribe","language":"en"},
    "turn_detection":{"type":"server_vad","threshold":0.6,"silence_duration_ms":2000}}})";

inline const QString completed = u"conversation.item.input_audio_transcription.completed"_s;
inline const QString delta = u"conversation.item.input_audio_transcription.delta"_s;

/// A session of which single sides are connected to the provider.
class ProviderFixture : public SandboxFixture {
protected:
    /// Starts a session and connects one side of it.
    std::unique_ptr<WireClient> side(const QString& suffix = {}) {
        coach = std::make_unique<WireClient>(coachUrl());
        coach->send(R"({"type":"start_session"})");
        started = coach->next();
        return connectSide(suffix);
    }
    std::unique_ptr<WireClient> connectSide(const QString& suffix) {
        return std::make_unique<WireClient>(QUrl{started[u"openai_realtime_url"_s + suffix].toString()},
                                            started[u"openai_ephemeral_token"_s + suffix].toString());
    }
    /// Sends audio as clients do, in batches of 100 ms.
    static void speak(WireClient& client, const GeneratedAudio& audio) {
        constexpr qsizetype batchBytes = 4800;
        const QByteArray pcm = audio.pcm();
        for (qsizetype at = 0; at < pcm.size(); at += batchBytes)
            client.send(appendFrame(pcm.mid(at, batchBytes)));
    }

    std::unique_ptr<WireClient> coach;
    QJsonObject started;
};

}  // namespace corvellan::test
