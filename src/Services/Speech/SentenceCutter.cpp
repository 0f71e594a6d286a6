#include "SentenceCutter.h"

#include <utility>

#include "Base/Characters.h"
#include "Base/Text.h"

namespace corvellan {

namespace {

/// From here on a comma ends a sentence too: long ones are spoken before they are complete.
constexpr qsizetype charactersBeforeComma = 40;

bool isStop(QStringView character) {
    return character == u"." || character == u"!" || character == u"?";
}

/// A character is white space when its first code point is.
bool isWhiteSpace(QStringView rest) {
    return text::trimmed(rest.first(1)).isEmpty();
}

std::optional<QString> trimmedUnlessEmpty(QStringView part) {
    QString trimmed = text::trimmed(part);
    if (trimmed.isEmpty())
        return std::nullopt;
    return trimmed;
}

}  // namespace

SentenceCutter::Search SentenceCutter::search(QStringView text, Place from) {
    const QStringView rest = text.sliced(from.index);
    text::Characters walker{rest};
    Place place = from;
    // Two back: the last character can still grow, and with half a pair at its end the one before too.
    Place before = from;
    Place beforeThat = from;
    for (qsizetype next = walker.nextEnd(); next >= 0; next = walker.nextEnd()) {
        const Place end{.index = from.index + next, .characters = place.characters + 1};
        const QStringView character = text.sliced(place.index, end.index - place.index);
        const bool ends = isStop(character) ? end.index == text.size() || isWhiteSpace(text.sliced(end.index))
                                            : character == u"," && place.characters >= charactersBeforeComma;
        if (ends)
            return {.boundary = Boundary{.index = place.index, .end = end.index}, .resume = {}};
        beforeThat = std::exchange(before, place);
        place = end;
    }
    return {.boundary = std::nullopt, .resume = beforeThat};
}

std::optional<qsizetype> findSentenceBoundary(QStringView text) {
    if (const auto boundary = SentenceCutter::search(text, {}).boundary)
        return boundary->index;
    return std::nullopt;
}

std::optional<QString> SentenceCutter::takeSentence() {
    while (!m_text.isEmpty()) {
        const auto [boundary, resume] = search(m_text, m_searched);
        m_searched = resume;
        if (!boundary)
            return std::nullopt;
        const auto sentence = trimmedUnlessEmpty(QStringView{m_text}.first(boundary->end));
        m_text.remove(0, boundary->end);
        if (sentence)
            return sentence;
    }
    return std::nullopt;
}

std::optional<QString> SentenceCutter::takeRest() {
    auto rest = trimmedUnlessEmpty(m_text);
    clear();
    return rest;
}

void SentenceCutter::clear() {
    m_text.clear();
    m_searched = {};
}

}  // namespace corvellan
