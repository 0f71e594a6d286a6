#pragma once

#include <optional>
#include <QString>
#include <QStringList>
#include <string_view>
#include <vector>

namespace corvellan::sandbox {

/// One sentence, ready to be searched for phrases.
struct Sentence {
    QString text;       ///< As it was said, without blanks round it.
    QStringList words;  ///< In lower case, without apostrophes; "%" is the word "percent".
    bool isQuestion = false;
};

/// Cuts what was said into sentences.
[[nodiscard]] std::vector<Sentence> sentences(const QString& text);

enum class Negation { counts, spoils };

/// The first of `phrases` that stands in the sentence. Phrases are words in lower case, separated by "|":
/// "signs off|decision maker". A word that ends in "*" stands for every word that begins so ("integrat*"),
/// "#" for any number in digits.
///
/// \param negation with `spoils`, a phrase behind "not", "no", "never" or their like (up to two words
///     before it) does not count.
[[nodiscard]] std::optional<QString> findPhrase(const Sentence& sentence, std::string_view phrases,
                                                Negation negation = Negation::counts);

/// As above, in any of the sentences.
[[nodiscard]] std::optional<QString> findPhrase(const std::vector<Sentence>& sentences, std::string_view phrases,
                                                Negation negation = Negation::counts);

}  // namespace corvellan::sandbox
