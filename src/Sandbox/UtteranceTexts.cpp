#include "UtteranceTexts.h"

#include <algorithm>
#include <QStringList>

#include "Base/Text.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

// What stands round the seconds of an utterance whose words nobody knows.
constexpr QStringView beforeSeconds = u"(";
constexpr QStringView behindSeconds = u" s of speech)";

class LengthTexts final : public UtteranceTexts {
public:
    void finished(const Utterance& utterance, Answer answer) override {
        answer({.text = beforeSeconds.toString() + text::fixed(utterance.seconds(), 1) + behindSeconds.toString(),
                .failure = {},
                .note = {}});
    }
};

class ScriptTexts final : public UtteranceTexts {
public:
    explicit ScriptTexts(std::vector<ScriptLine> lines) : m_lines(std::move(lines)) {}

    QString soFar(double seconds) const override {
        if (m_next >= m_lines.size())
            return {};
        const auto& line = m_lines[m_next];
        const QStringList words = line.text.split(u' ');
        const auto known = static_cast<qsizetype>(static_cast<double>(words.size()) * seconds / line.seconds);
        return words.mid(0, known).join(u' ');
    }

    void finished(const Utterance& utterance, Answer answer) override {
        // Far enough to get over a line that was lost, too short to run away with a cough.
        constexpr std::size_t lookAhead = 3;
        const double seconds = utterance.seconds();
        const std::size_t end = std::min(m_lines.size(), m_next + lookAhead);
        for (std::size_t i = m_next; i < end; ++i) {
            if (!fits(seconds, m_lines[i].seconds))
                continue;
            const QString note = i == m_next ? QString{} : u"%1 of its lines skipped"_s.arg(i - m_next);
            m_next = i + 1;
            answer({.text = m_lines[i].text, .failure = {}, .note = note});
            return;
        }
        const QString expected =
            m_next < m_lines.size()
                ? u"line %1 has %2 s"_s.arg(m_lines[m_next].number).arg(text::fixed(m_lines[m_next].seconds, 1))
                : u"its lines are all said"_s;
        answer({.text = {}, .failure = {}, .note = u"fits no line of the script: "_s + expected});
    }

private:
    std::vector<ScriptLine> m_lines;
    std::size_t m_next = 0;
};

}  // namespace

std::optional<QString> secondsWithoutWords(const QString& line) {
    if (!line.startsWith(beforeSeconds) || !line.endsWith(behindSeconds))
        return std::nullopt;
    const auto seconds = QStringView{line}.chopped(behindSeconds.size()).sliced(beforeSeconds.size());
    const bool isNumber = !seconds.isEmpty() && std::ranges::all_of(seconds, [](QChar character) {
        return (character >= u'0' && character <= u'9') || character == u'.';
    });
    return isNumber ? std::optional{seconds.toString()} : std::nullopt;
}

UtteranceTextsMaker lengthTexts() {
    return [](AudioSourceTag) { return std::make_unique<LengthTexts>(); };
}

UtteranceTextsMaker scriptTexts(CallScript script) {
    return [script = std::move(script)](AudioSourceTag side) {
        return std::make_unique<ScriptTexts>(script.linesOf(side));
    };
}

}  // namespace corvellan::sandbox
