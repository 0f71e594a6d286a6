#pragma once

#include <chrono>
#include <QString>

#include "UtteranceTexts.h"

namespace corvellan::sandbox {

/// A recogniser that the user names: a command that is given a WAV file and prints what was said.
struct RecogniserCommand {
    QString command;  ///< For /bin/sh; "{wav}" stands for the quoted path of the file.
    std::chrono::milliseconds limit{30'000};
};

/// Runs the command for each utterance, one after another. A command that fails, prints no UTF-8 or
/// exceeds its time is a failure of that utterance alone; its whole process group is ended then.
[[nodiscard]] UtteranceTextsMaker commandTexts(RecogniserCommand command);

/// `path` as one word of a shell command.
[[nodiscard]] QString shellQuoted(const QString& path);

}  // namespace corvellan::sandbox
