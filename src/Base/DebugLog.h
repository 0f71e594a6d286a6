#pragma once

#include <QString>

#include "Clock.h"

namespace corvellan {

/// The debug file: one line an entry, the date in UTC, a blank and the message. Never trimmed or
/// rotated; every failure is ignored. Each entry opens, appends and closes, so that the file can be
/// moved away at any time. Callable from any thread.
class DebugLog {
public:
    /// \param filePath "corvellan-debug.log" in the user's home directory in the program itself.
    DebugLog(QString filePath, const Clock& clock);

    void write(const QString& message) const;

private:
    QString m_filePath;
    const Clock& m_clock;
};

}  // namespace corvellan
