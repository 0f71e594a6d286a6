#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <QObject>
#include <QString>
#include <QStringList>

#include "Base/Clock.h"

namespace corvellan::sandbox {

/// Hands a text out word by word, as somebody who thinks first and then talks. On a thread with an executor.
class BuyerVoice : public QObject {
    Q_OBJECT
public:
    struct Pace {
        std::chrono::milliseconds think{0};  ///< Before the first word.
        std::chrono::milliseconds word{0};   ///< From word to word; between sentences three times as long.
    };
    /// All are called from within `speak`, `cutShort` and the clock's calls.
    struct Listener {
        std::function<void(const QString& token)> onToken;
        /// Together with its last word.
        std::function<void(const QString& sentence)> onSentence;
        /// \param said the text up to where it came.
        /// \param latency from `speak` to the first word.
        std::function<void(const QString& said, std::chrono::milliseconds latency)> onDone;
    };

    BuyerVoice(Clock& clock, Listener listener);

    /// Begins to speak; what was being said before is cut short.
    void speak(const QString& text, Pace pace);
    /// Says no more. `onDone` follows if anything was said of the text.
    void cutShort();
    /// Says no more, and tells nobody.
    void silence();

private:
    void sayNext();
    void end();

    Clock& m_clock;
    Listener m_listener;
    QStringList m_tokens;
    qsizetype m_next = 0;
    qsizetype m_sentence = 0;  ///< The token that begins the sentence at hand.
    Pace m_pace;
    MonotonicTime m_askedAt;
    std::chrono::milliseconds m_latency{0};
    int m_generation = 0;  ///< Timers of an earlier text find another one.
};

/// A text in the pieces that it travels in: words, each but the first with the blank before it.
[[nodiscard]] QStringList speechTokens(const QString& text);

}  // namespace corvellan::sandbox
