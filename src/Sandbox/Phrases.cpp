#include "Phrases.h"

#include <algorithm>
#include <array>

#include "Base/Text.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

QStringList words(const QString& text) {
    QStringList found;
    QString word;
    const auto flush = [&] {
        if (!word.isEmpty())
            found.append(std::exchange(word, {}));
    };
    for (const QChar character : text.toLower()) {
        if (character.isLetterOrNumber() || character.isMark())
            word.append(character);
        else if (character == u'\'' || character == u'’')
            continue;  // "don't" is the word "dont".
        else {
            flush();
            if (character == u'%')
                found.append(u"percent"_s);
        }
    }
    flush();
    return found;
}

bool matches(const QString& word, QStringView pattern) {
    if (pattern == u'#')
        return std::ranges::all_of(word, [](QChar character) { return character.isDigit(); });
    if (pattern.endsWith(u'*'))
        return word.startsWith(pattern.chopped(1));
    return word == pattern;
}

bool isNegation(const QString& word) {
    static constexpr std::array negations{u"not",   u"no",      u"never",   u"without", u"hardly", u"dont",   u"doesnt",
                                          u"didnt", u"isnt",    u"arent",   u"wasnt",   u"werent", u"cannot", u"cant",
                                          u"wont",  u"couldnt", u"wouldnt", u"havent",  u"hasnt"};
    return std::ranges::find(negations, QStringView{word}) != negations.end();
}

bool isNegatedAt(const QStringList& words, qsizetype at) {
    constexpr qsizetype reach = 2;
    for (qsizetype i = std::max<qsizetype>(0, at - reach); i < at; ++i)
        if (isNegation(words[i]))
            return true;
    return false;
}

std::optional<qsizetype> find(const QStringList& words, const QStringList& phrase, qsizetype from) {
    for (qsizetype at = from; at + phrase.size() <= words.size(); ++at) {
        const bool isHere =
            std::ranges::equal(phrase, words.sliced(at, phrase.size()),
                               [](const QString& pattern, const QString& word) { return matches(word, pattern); });
        if (isHere)
            return at;
    }
    return std::nullopt;
}

}  // namespace

std::vector<Sentence> sentences(const QString& text) {
    std::vector<Sentence> found;
    qsizetype start = 0;
    const auto take = [&](qsizetype end, bool isQuestion) {
        Sentence sentence{.text = text::trimmed(QStringView{text}.mid(start, end - start)), .isQuestion = isQuestion};
        sentence.words = words(sentence.text);
        if (!sentence.words.isEmpty())
            found.push_back(std::move(sentence));
        start = end;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const bool isEnd = character == u'?' || character == u'!' || character == u'\n' ||
                           (character == u'.' && (i + 1 == text.size() || text[i + 1].isSpace()));
        if (isEnd)
            take(i + 1, character == u'?');
    }
    take(text.size(), false);
    return found;
}

std::optional<QString> findPhrase(const Sentence& sentence, std::string_view phrases, Negation negation) {
    for (const auto& phrase : QString::fromUtf8(phrases.data(), static_cast<qsizetype>(phrases.size())).split(u'|')) {
        const QStringList pattern = phrase.split(u' ', Qt::SkipEmptyParts);
        if (pattern.isEmpty())
            continue;
        auto at = find(sentence.words, pattern, 0);
        while (at && negation == Negation::spoils && isNegatedAt(sentence.words, *at))
            at = find(sentence.words, pattern, *at + 1);
        if (at)
            return sentence.words.sliced(*at, pattern.size()).join(u' ');
    }
    return std::nullopt;
}

std::optional<QString> findPhrase(const std::vector<Sentence>& sentences, std::string_view phrases, Negation negation) {
    for (const auto& sentence : sentences)
        if (auto found = findPhrase(sentence, phrases, negation))
            return found;
    return std::nullopt;
}

}  // namespace corvellan::sandbox
