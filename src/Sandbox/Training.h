#pragma once

#include <functional>
#include <optional>
#include <QString>
#include <QStringList>

#include "Buyer.h"
#include "BuyerVoice.h"
#include "Models/Protocol.h"
#include "QuestionGame.h"

namespace corvellan::sandbox {

/// What is special about a session for training: a buyer that answers in the customer's place, and the question
/// game where it is played. On a thread with an executor.
class Training {
public:
    using Send = std::function<void(const ServerMsg&)>;
    /// With each sentence of the buyer's, at the moment at which its last word is sent.
    using OnSentence = std::function<void(const QString&)>;
    /// With what was really said, and given away, of a reply.
    using OnReply = std::function<void(const BuyerReply&)>;

    /// \param send takes the messages of the buyer's talk.
    /// \param onReply runs behind each reply's end.
    Training(Buyer buyer, bool isGame, Clock& clock, Send send, OnSentence onSentence, OnReply onReply);

    [[nodiscard]] DiscType buyerType() const { return m_buyer.type(); }

    /// The buyer speaks first.
    void begin();
    /// The salesperson speaks: the reply under way ends where it is.
    void interrupt() { m_voice.cutShort(); }
    /// Lets the buyer answer an utterance of the salesperson.
    void reply(const QString& text);
    /// Nobody says anything any more.
    void silence() { m_voice.silence(); }

    /// What is shown in place of the coach's own tip on an utterance: the game's verdict if there is one, and its
    /// score in either.
    ///
    /// \param state how the call stands.
    [[nodiscard]] std::optional<CoachingPayload> judged(AudioSourceTag side, const QString& text,
                                                        std::optional<CoachingPayload> tip,
                                                        const CallStateSnapshot& state);

    /// For the summary.
    [[nodiscard]] QStringList keyPoints() const;

private:
    void speak(BuyerReply reply);
    void endReply(const QString& said, std::chrono::milliseconds latency);

    Buyer m_buyer;
    std::optional<QuestionGame> m_game;
    Send m_send;
    OnReply m_onReply;
    BuyerReply m_reply;  ///< The one that is being said.
    BuyerVoice m_voice;
};

}  // namespace corvellan::sandbox
