#pragma once

#include <array>
#include <optional>
#include <QString>
#include <QStringList>

#include "Models/Protocol.h"

namespace corvellan::sandbox {

/// Keeps the score of a training session that is played as a game: points for open questions on the six criteria,
/// a penalty for closed ones. One thread.
class QuestionGame {
public:
    static constexpr int newOpenQuestion = 10;
    /// On a criterion that an open question was asked for before.
    static constexpr int furtherOpenQuestion = 3;
    static constexpr int closedQuestion = -5;

    /// Takes an utterance of the salesperson. What it brought, as a tip of at most ten words; nothing when no
    /// question in it was on a criterion.
    [[nodiscard]] std::optional<QString> hear(const QString& text);

    [[nodiscard]] int score() const { return m_score; }
    /// "Score 25", for the overlay's phase line.
    [[nodiscard]] QString phase() const;
    [[nodiscard]] QStringList keyPoints() const;

private:
    std::array<bool, meddicCriteria> m_asked{};
    int m_score = 0;
    int m_open = 0;
    int m_closed = 0;
};

}  // namespace corvellan::sandbox
