#include "BuyerVoice.h"

#include <utility>

#include "Later.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr int sentenceRests = 3;

bool endsSentence(const QString& token) {
    return token.endsWith(u'.') || token.endsWith(u'?') || token.endsWith(u'!');
}

}  // namespace

QStringList speechTokens(const QString& text) {
    QStringList tokens;
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts))
        tokens.append(tokens.isEmpty() ? word : u' ' + word);
    return tokens;
}

BuyerVoice::BuyerVoice(Clock& clock, Listener listener) : m_clock(clock), m_listener(std::move(listener)) {}

void BuyerVoice::speak(const QString& text, Pace pace) {
    cutShort();
    m_tokens = speechTokens(text);
    m_pace = pace;
    m_askedAt = m_clock.now();
    later(m_clock, pace.think, this, [this, generation = m_generation] {
        if (generation == m_generation)
            sayNext();
    });
}

void BuyerVoice::sayNext() {
    if (m_next >= m_tokens.size()) {
        end();
        return;
    }
    if (m_next == 0)
        m_latency = std::chrono::floor<std::chrono::milliseconds>(m_clock.now() - m_askedAt);
    const QString token = m_tokens[m_next++];
    const bool isLast = m_next == m_tokens.size();
    const auto rest = isLast                ? std::chrono::milliseconds{0}
                      : endsSentence(token) ? sentenceRests * m_pace.word
                                            : m_pace.word;
    later(m_clock, rest, this, [this, generation = m_generation] {
        if (generation == m_generation)
            sayNext();
    });
    if (endsSentence(token)) {
        const qsizetype begin = std::exchange(m_sentence, m_next);
        m_listener.onSentence(m_tokens.sliced(begin, m_next - begin).join(QString{}).trimmed());
    }
    m_listener.onToken(token);
}

void BuyerVoice::end() {
    const QString said = m_tokens.first(m_next).join(QString{});
    const auto latency = m_latency;
    silence();
    if (!said.isEmpty())
        m_listener.onDone(said, latency);
}

void BuyerVoice::cutShort() {
    end();
}

void BuyerVoice::silence() {
    ++m_generation;
    m_tokens.clear();
    m_next = 0;
    m_sentence = 0;
}

}  // namespace corvellan::sandbox
