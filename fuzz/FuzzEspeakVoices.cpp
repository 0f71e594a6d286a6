#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Platform/Linux/Speech/EspeakVoices.h"

using namespace corvellan;

// Any listing gives voices that can be asked for, and no identifier becomes an option of the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray listing{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    for (const auto& [voice, identifier] :
         parseEspeakVoices(listing, [](const QString& name) { return name.size() < 4; }))
        if (voice.language.isEmpty() || voice.name.isEmpty() || identifier.isEmpty() || identifier.startsWith(u'-') ||
            identifier.contains(u' ') || voice.quality == VoiceQuality::premium)
            std::abort();
    return 0;
}
