#include "DebugLog.h"

#include <QFile>

#include "Iso8601.h"

namespace corvellan {

DebugLog::DebugLog(QString filePath, const Clock& clock) : m_filePath(std::move(filePath)), m_clock(clock) {}

void DebugLog::write(const QString& message) const {
    const auto line = logStamp(m_clock.wallNow()) + u' ' + message + u'\n';
    QFile file{m_filePath};
    // Append mode puts every write at the end, also of two threads at once.
    if (file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        file.write(line.toUtf8());
}

}  // namespace corvellan
