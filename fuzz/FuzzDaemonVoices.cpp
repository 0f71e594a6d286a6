#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Platform/Linux/Speech/DaemonVoices.h"

using namespace corvellan;

// Any answer gives English voices that can be asked for, no more than it has lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView answer{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    const auto lines = answerLines(answer);
    const auto voices = parseDaemonVoices(answer, lines && !lines->empty() ? lines->front() : QByteArrayView{});
    if (voices.size() > (lines ? lines->size() : 0))
        std::abort();
    for (const SpeechVoice& voice : voices)
        if (!voice.language.startsWith(u"en") || voice.name.isEmpty() || voice.quality == VoiceQuality::premium)
            std::abort();
    return 0;
}
