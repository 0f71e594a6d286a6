#pragma once

#include <optional>
#include <QString>

namespace corvellan {

/// Who a stored transcript line is from, by its prefix.
enum class TranscriptRole {
    mic,      ///< "[Mic] ": the user.
    audio,    ///< "[Audio] ": the other side.
    coach,    ///< "[Coach] "
    unknown,  ///< No known prefix.
};

struct ParsedLine {
    TranscriptRole role = TranscriptRole::unknown;
    QString text;

    bool operator==(const ParsedLine&) const = default;
};

/// What follows the prefix; absent for a text that does not begin with it.
[[nodiscard]] std::optional<QString> stripPrefix(const QString& text, QStringView prefix);

/// A line without a known prefix stays as it is.
[[nodiscard]] ParsedLine parseTranscriptLine(const QString& line);

}  // namespace corvellan
