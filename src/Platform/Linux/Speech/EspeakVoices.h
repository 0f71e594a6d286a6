#pragma once

#include <functional>
#include <QByteArray>
#include <QString>
#include <vector>

#include "Platform/SpeechSynthesizer.h"

namespace corvellan {

/// A voice of espeak-ng, and what its option "-v" takes for it.
struct EspeakVoice {
    SpeechVoice voice;
    QString identifier;

    bool operator==(const EspeakVoice&) const = default;
};

/// A language tag as others write it: "en-us" becomes "en-US".
[[nodiscard]] QString languageTag(const QString& language);

/// Reads what `espeak-ng --voices=en` prints. Lines of another shape are left out.
///
/// espeak-ng's own voices are made by formants: they are understood everywhere and sound like nobody, so
/// they are standard. Those of MBROLA are cut from a person's speech: they are enhanced, but for those of
/// a speaker of another language who is made to read English. None is premium: no voice of espeak-ng is
/// as good as that.
///
/// \param isInstalled whether the MBROLA database of this name ("us1") is there: espeak-ng lists them all.
[[nodiscard]] std::vector<EspeakVoice> parseEspeakVoices(const QByteArray& listing,
                                                         const std::function<bool(const QString&)>& isInstalled);

/// Whether `mbrola` and its database of this name are installed on this computer.
[[nodiscard]] bool isMbrolaInstalled(const QString& database);

}  // namespace corvellan
