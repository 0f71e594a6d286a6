#pragma once

#include <expected>
#include <QByteArray>
#include <QString>
#include <vector>

#include "Base/Error.h"
#include "Models/Types.h"

namespace corvellan::sandbox {

/// How espeak-ng is to speak one side.
struct ScriptVoice {
    QString name = QStringLiteral("en-us");
    int wordsPerMinute = 160;

    bool operator==(const ScriptVoice&) const = default;
};

struct ScriptLine {
    int number = 0;  ///< From 1, in the order of the file.
    AudioSourceTag side = AudioSourceTag::mic;
    double startSeconds = 0;  ///< From the start of the call.
    double seconds = 0;       ///< Of speech: given, measured, or estimated from the text.
    QString text;

    bool operator==(const ScriptLine&) const = default;
};

/// Where a script or a list of lengths is wrong.
struct ScriptError {
    int line = 0;  ///< Of the file, from 1. 0 when it concerns the whole.
    QString message;

    /// "line 7: ...".
    [[nodiscard]] QString errorDescription() const;
};

/// A call that is known beforehand: who says what, when and for how long. docs/sandbox.md tells the
/// format. Lines stand in the order of their start times. Pure but for `load`.
struct CallScript {
    QString title;
    ScriptVoice mic;
    ScriptVoice system;
    std::vector<ScriptLine> lines;

    /// Any bytes give a script or an error that names the line.
    [[nodiscard]] static std::expected<CallScript, Error> parse(const QByteArray& text);

    /// Reads a file; a bare name without such a file is looked up among the scripts that come with
    /// the program ("discovery-call").
    [[nodiscard]] static std::expected<CallScript, Error> load(const QString& fileOrName);

    /// Replaces the lengths by measured ones: a JSON array with one number of seconds a line, or null
    /// where the script's own length stands.
    [[nodiscard]] std::expected<void, Error> useLengths(const QByteArray& json);

    /// From the start of the call to the end of its last line.
    [[nodiscard]] double durationSeconds() const;
    [[nodiscard]] const ScriptVoice& voice(AudioSourceTag side) const;
    [[nodiscard]] std::vector<ScriptLine> linesOf(AudioSourceTag side) const;

    /// For programs that synthesise the voices and play them.
    [[nodiscard]] QByteArray json() const;
    /// For people, one line each.
    [[nodiscard]] QString list() const;
};

/// Seconds of speech that `text` takes at this speed, by its letters and rests.
[[nodiscard]] double estimatedSeconds(const QString& text, int wordsPerMinute);

/// A line leaves only for an utterance whose length fits the line's within a quarter.
[[nodiscard]] bool fits(double spokenSeconds, double lineSeconds);

}  // namespace corvellan::sandbox
