#pragma once

#include <QString>

#include "Models/Types.h"

namespace corvellan::sandbox {

/// What one connection to the provider has brought.
struct ProviderFigures {
    QString sessionId;
    AudioSourceTag side = AudioSourceTag::mic;
    qint64 bytes = 0;       ///< PCM bytes received.
    qint64 appends = 0;     ///< Frames that held them.
    qint64 utterances = 0;  ///< Utterances found, whatever became of them.
    qint64 lines = 0;       ///< Texts sent back.
    qint64 faults = 0;      ///< Frames that were wrong.
    QString wavPath;        ///< Where the audio is kept. Empty when it is not.
    bool isOpen = true;
};

}  // namespace corvellan::sandbox
