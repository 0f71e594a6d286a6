#pragma once

#include <optional>
#include <QString>

namespace corvellan {

/// The index (in UTF-16 units) of the first character that ends a sentence: one of ".", "!", "?" at the
/// text's end or before white space, or a "," with 40 or more characters before it. Empty without one.
[[nodiscard]] std::optional<qsizetype> findSentenceBoundary(QStringView text);

/// Cuts text that arrives in pieces into sentences. What is returned is trimmed and not empty.
class SentenceCutter {
public:
    void append(QStringView piece) { m_text += piece; }

    /// Takes the next complete sentence out; empty when there is none yet.
    [[nodiscard]] std::optional<QString> takeSentence();

    /// Takes out what is left; empty when that is white space alone.
    [[nodiscard]] std::optional<QString> takeRest();

    void clear();

    /// What was neither taken nor forgotten.
    [[nodiscard]] const QString& text() const { return m_text; }

private:
    /// A place between two characters, and how many stand before it.
    struct Place {
        qsizetype index = 0;
        qsizetype characters = 0;
    };
    /// A sentence's last character.
    struct Boundary {
        qsizetype index = 0;
        qsizetype end = 0;
    };
    struct Search {
        std::optional<Boundary> boundary;
        Place resume;
    };

    static Search search(QStringView text, Place from);
    friend std::optional<qsizetype> findSentenceBoundary(QStringView text);

    QString m_text;
    /// No boundary stands before it, whatever comes: a text without a stop is not walked anew each time.
    Place m_searched;
};

}  // namespace corvellan
