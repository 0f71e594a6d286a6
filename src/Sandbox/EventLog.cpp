#include "EventLog.h"

#include <cstdio>

#include "Base/Iso8601.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

EventLog::EventLog(const Clock& clock, Sink sink) : m_clock(clock), m_sink(std::move(sink)) {
    if (m_sink)
        return;
    m_sink = [](const QString& line) {
        const QByteArray bytes = line.toUtf8() + '\n';
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
        std::fflush(stdout);
    };
}

void EventLog::event(const QString& who, const QString& what) const {
    constexpr qsizetype timeAt = 11;  // "2026-03-01T09:05:00.250Z"
    constexpr qsizetype timeLength = 12;
    m_sink(iso8601(m_clock.wallNow()).mid(timeAt, timeLength) + u"  "_s + who.leftJustified(7) + u' ' +
           what.simplified());
}

void EventLog::plain(const QString& line) const {
    m_sink(line);
}

}  // namespace corvellan::sandbox
