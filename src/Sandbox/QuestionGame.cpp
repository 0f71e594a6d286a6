#include "QuestionGame.h"

#include "Phrases.h"
#include "Questions.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

std::optional<QString> QuestionGame::hear(const QString& text) {
    std::optional<QString> tip;
    for (const auto& sentence : sentences(text)) {
        const auto kind = questionKind(sentence);
        const auto topic = kind == QuestionKind::none ? std::nullopt : topicOf(sentence);
        if (!topic || !isMeddic(*topic))
            continue;
        const QString name = tableText(shortName(*topic));
        if (kind == QuestionKind::closed) {
            ++m_closed;
            m_score += closedQuestion;
            tip = u"Closed question on %1: %2. Score %3."_s.arg(name).arg(closedQuestion).arg(m_score);
            continue;
        }
        bool& wasAsked = m_asked.at(static_cast<std::size_t>(*topic));
        const int points = wasAsked ? furtherOpenQuestion : newOpenQuestion;
        wasAsked = true;
        ++m_open;
        m_score += points;
        tip = u"Open question on %1: +%2. Score %3."_s.arg(name).arg(points).arg(m_score);
    }
    return tip;
}

QString QuestionGame::phase() const {
    return u"Score %1"_s.arg(m_score);
}

QStringList QuestionGame::keyPoints() const {
    QStringList missing;
    for (std::size_t i = 0; i < m_asked.size(); ++i)
        if (!m_asked.at(i))
            missing.append(tableText(meddicDisplayNames.at(i)));
    QStringList points{
        u"Question game: score %1, with %2 open and %3 closed MEDDIC questions."_s.arg(m_score).arg(m_open).arg(
            m_closed)};
    if (!missing.isEmpty())
        points.append(u"Not asked openly: %1."_s.arg(missing.join(u", "_s)));
    return points;
}

}  // namespace corvellan::sandbox
