#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QString>

#include "CallScript.h"
#include "Models/Types.h"
#include "UtteranceFinder.h"

namespace corvellan::sandbox {

/// What an utterance says, as far as its source knows.
struct Spoken {
    std::optional<QString> text;     ///< Empty when nothing is to be said about it.
    std::optional<QString> failure;  ///< Why the source could not tell.
    QString note;                    ///< For the person in front of the sandbox.
};

/// Tells what the utterances of one connection say. Answers come in the order of the utterances.
/// One thread; nothing is answered after the object has gone.
class UtteranceTexts {
public:
    using Answer = std::function<void(Spoken)>;

    virtual ~UtteranceTexts() = default;

    /// What can be told `seconds` into the utterance under way. Only ever grows within one utterance.
    [[nodiscard]] virtual QString soFar(double /*seconds*/) const { return {}; }

    /// Takes a finished utterance; `answer` is called once, now or later.
    virtual void finished(const Utterance& utterance, Answer answer) = 0;
};

/// Makes the texts of a connection.
using UtteranceTextsMaker = std::function<std::unique_ptr<UtteranceTexts>(AudioSourceTag side)>;

/// "(3.2 s of speech)", for when there is neither script nor recogniser.
[[nodiscard]] UtteranceTextsMaker lengthTexts();

/// The seconds in a line of `lengthTexts`, as they stand there; empty for any other line.
[[nodiscard]] std::optional<QString> secondsWithoutWords(const QString& line);

/// The lines of a script, from its top in each connection. An utterance that does not fit the line
/// whose turn it is, but one of the next few, skips to that; one that fits none says nothing.
[[nodiscard]] UtteranceTextsMaker scriptTexts(CallScript script);

}  // namespace corvellan::sandbox
