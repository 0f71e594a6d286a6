#include "TranscriptRole.h"

#include <array>

namespace corvellan {

namespace {

struct PrefixRow {
    TranscriptRole role;
    QStringView prefix;
};

constexpr std::array prefixRows{
    PrefixRow{TranscriptRole::mic, u"[Mic] "},
    PrefixRow{TranscriptRole::audio, u"[Audio] "},
    PrefixRow{TranscriptRole::coach, u"[Coach] "},
};

}  // namespace

std::optional<QString> stripPrefix(const QString& text, QStringView prefix) {
    if (!text.startsWith(prefix))
        return std::nullopt;
    return text.sliced(prefix.size());
}

ParsedLine parseTranscriptLine(const QString& line) {
    for (const auto& [role, prefix] : prefixRows)
        if (auto rest = stripPrefix(line, prefix))
            return {role, *std::move(rest)};
    return {TranscriptRole::unknown, line};
}

}  // namespace corvellan
