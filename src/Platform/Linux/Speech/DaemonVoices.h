#pragma once

#include <optional>
#include <QByteArrayView>
#include <vector>

#include "Platform/SpeechSynthesizer.h"

namespace corvellan {

/// The data lines of an answer of Speech Dispatcher (its Speech Synthesis Interface Protocol), without their numbers:
/// "249-Kal\ten-US\tnone\r\n249 OK VOICE LIST SENT\r\n" has one. They refer to `answer`.
///
/// \returns nothing for an error, and for an answer that breaks off.
[[nodiscard]] std::optional<std::vector<QByteArrayView>> answerLines(QByteArrayView answer);

/// Those of LIST SYNTHESIS_VOICES that speak English, in their order, each "name\tlanguage\tvariant". Their variants
/// are left out, as are lines of another shape.
///
/// No module tells how good its voices are. Those that are made from recordings of a person (MBROLA, and the neural
/// and statistical ones) are enhanced; the others are standard, and none is premium.
///
/// \param module the output module, as GET OUTPUT_MODULE names it.
[[nodiscard]] std::vector<SpeechVoice> parseDaemonVoices(QByteArrayView answer, QByteArrayView module);

}  // namespace corvellan
