#include <benchmark/benchmark.h>

#include <QStringList>
#include <vector>

#include "Services/Speech/SentenceCutter.h"

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype wordsInSentence = 12;
/// No stop at all: what a server sends that has lost its head.
constexpr qsizetype endless = 0;

/// A reply as it arrives: a word a token, with the blank before it.
std::vector<QString> reply(qsizetype tokens, qsizetype sentence) {
    std::vector<QString> words;
    for (qsizetype i = 0; i < tokens; ++i)
        words.push_back(u" word"_s + (sentence != endless && (i + 1) % sentence == 0 ? u"."_s : QString{}));
    return words;
}

/// What anybody would write first: the text so far from its beginning, for each token.
class PlainCutter {
public:
    void append(QStringView piece) { m_text += piece; }

    std::optional<QString> takeSentence() {
        for (qsizetype i = 0; i < m_text.size(); ++i) {
            const QChar character = m_text.at(i);
            const bool isStop = character == u'.' || character == u'!' || character == u'?';
            const bool ends =
                isStop ? i + 1 == m_text.size() || m_text.at(i + 1).isSpace() : character == u',' && i >= 40;
            if (!ends)
                continue;
            QString sentence = m_text.first(i + 1).trimmed();
            m_text.remove(0, i + 1);
            return sentence;
        }
        return std::nullopt;
    }

private:
    QString m_text;
};

template <typename Cutter>
void cut(benchmark::State& state, qsizetype sentence) {
    const auto tokens = reply(state.range(0), sentence);
    for (auto _ : state) {
        Cutter cutter;
        for (const QString& token : tokens) {
            cutter.append(token);
            while (auto found = cutter.takeSentence())
                benchmark::DoNotOptimize(found);
        }
    }
}

void cutAsTheProgram(benchmark::State& state, qsizetype sentence) {
    cut<SentenceCutter>(state, sentence);
}

void cutPlainly(benchmark::State& state, qsizetype sentence) {
    cut<PlainCutter>(state, sentence);
}

}  // namespace

BENCHMARK_CAPTURE(cutAsTheProgram, sentences, wordsInSentence)->Name("CutSpeech/ours")->Arg(10'000);
BENCHMARK_CAPTURE(cutPlainly, sentences, wordsInSentence)
    ->Name("CutSpeech/peer:plain loop from the start")
    ->Arg(10'000);
BENCHMARK_CAPTURE(cutAsTheProgram, endless, endless)->Name("CutSpeechWithoutStop/ours")->Arg(10'000);
BENCHMARK_CAPTURE(cutPlainly, endless, endless)
    ->Name("CutSpeechWithoutStop/peer:plain loop from the start")
    ->Arg(10'000);

}  // namespace corvellan
