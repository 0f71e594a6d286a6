#include "Training.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

Training::Training(Buyer buyer, bool isGame, Clock& clock, Send send, OnSentence onSentence, OnReply onReply)
    : m_buyer(std::move(buyer)),
      m_send(std::move(send)),
      m_onReply(std::move(onReply)),
      m_voice(clock,
              {.onToken = [this](const QString& token) { m_send(ServerMsg{ServerMsg::CounterpartToken{token}}); },
               .onSentence = std::move(onSentence),
               .onDone = [this](const QString& said, std::chrono::milliseconds latency) { endReply(said, latency); }}) {
    if (isGame)
        m_game.emplace();
}

void Training::begin() {
    speak({.text = m_buyer.opening(), .given = {}});
}

void Training::reply(const QString& text) {
    if (auto reply = m_buyer.hear(text))
        speak(*std::move(reply));
}

void Training::speak(BuyerReply reply) {
    m_reply = std::move(reply);
    m_voice.speak(m_reply.text, {.think = m_buyer.thinkTime(), .word = m_buyer.wordTime()});
}

void Training::endReply(const QString& said, std::chrono::milliseconds latency) {
    m_send(ServerMsg{ServerMsg::CounterpartDone{.latencyMs = static_cast<std::uint64_t>(latency.count())}});
    BuyerReply heard{.text = said, .given = m_reply.given};
    // Who cuts the buyer short has not heard it.
    if (heard.given && !said.contains(heard.given->evidence))
        heard.given.reset();
    m_onReply(heard);
}

std::optional<CoachingPayload> Training::judged(AudioSourceTag side, const QString& text,
                                                std::optional<CoachingPayload> tip, const CallStateSnapshot& state) {
    if (!m_game)
        return tip;
    if (const auto verdict = side == AudioSourceTag::mic ? m_game->hear(text) : std::nullopt)
        tip = CoachingPayload{.message = *verdict,
                              .coachingType = CoachingType::questionPrompt,
                              .urgency = CoachingUrgency::medium,
                              .state = state};
    if (tip)
        tip->state.callPhase = m_game->phase();
    return tip;
}

QStringList Training::keyPoints() const {
    return m_game ? m_game->keyPoints() + m_buyer.keyPoints() : m_buyer.keyPoints();
}

}  // namespace corvellan::sandbox
