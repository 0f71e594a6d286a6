#include "DaemonVoices.h"

#include <algorithm>
#include <array>

#include "Base/Utf8.h"
#include "EspeakVoices.h"

namespace corvellan {

namespace {

constexpr qsizetype numberLength = 3;

bool isRecordedModule(QByteArrayView module) {
    constexpr std::array recorded{"mbrola", "piper", "mimic3", "rhvoice"};
    const QByteArray name = module.toByteArray().toLower();
    return std::ranges::any_of(recorded, [&](const char* part) { return name.contains(part); });
}

/// What stands before `separator`, which is taken off `rest` with it.
QByteArrayView takeUntil(char separator, QByteArrayView& rest) {
    const qsizetype end = rest.indexOf(separator);
    const QByteArrayView taken = end < 0 ? rest : rest.first(end);
    rest = end < 0 ? QByteArrayView{} : rest.sliced(end + 1);
    return taken;
}

}  // namespace

std::optional<std::vector<QByteArrayView>> answerLines(QByteArrayView answer) {
    std::vector<QByteArrayView> lines;
    while (answer.contains('\n')) {
        QByteArrayView line = takeUntil('\n', answer);
        if (line.endsWith('\r'))
            line.chop(1);
        // Numbers from 200 tell of success.
        if (line.size() <= numberLength || !line.startsWith('2'))
            return std::nullopt;
        if (line.at(numberLength) == ' ')
            return lines;
        if (line.at(numberLength) != '-')
            return std::nullopt;
        lines.push_back(line.sliced(numberLength + 1));
    }
    return std::nullopt;
}

std::vector<SpeechVoice> parseDaemonVoices(QByteArrayView answer, QByteArrayView module) {
    std::vector<SpeechVoice> voices;
    const auto quality = isRecordedModule(module) ? VoiceQuality::enhanced : VoiceQuality::standard;
    for (QByteArrayView line : answerLines(answer).value_or(std::vector<QByteArrayView>{})) {
        const auto name = takeUntil('\t', line);
        const auto language = takeUntil('\t', line);
        // Hundreds of variants sound like one voice with a cold.
        if (!name.isEmpty() && language.startsWith("en") && (line.isEmpty() || line == "none"))
            voices.push_back(
                {.language = languageTag(QString::fromUtf8(language)), .quality = quality, .name = textFromUtf8(name)});
    }
    return voices;
}

}  // namespace corvellan
