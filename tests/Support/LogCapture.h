#pragma once

#include <mutex>
#include <QStringList>

#include "Base/Log.h"

namespace corvellan::test {

/// Keeps the system log's lines of one category while it lives. One at a time.
class LogCapture {
public:
    explicit LogCapture(QString category) : m_category(std::move(category)) {
        setLogSink([this](const LogLine& line) {
            const std::scoped_lock lock{m_mutex};
            if (line.category == m_category)
                m_lines.append(line);
        });
    }
    ~LogCapture() { setLogSink(nullptr); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The texts of one level, in order.
    [[nodiscard]] QStringList texts(LogLevel level) const {
        const std::scoped_lock lock{m_mutex};
        QStringList texts;
        for (const LogLine& line : m_lines)
            if (line.level == level)
                texts.append(line.text);
        return texts;
    }
    [[nodiscard]] QStringList infos() const { return texts(LogLevel::info); }
    [[nodiscard]] QStringList errors() const { return texts(LogLevel::error); }
    [[nodiscard]] QStringList debugs() const { return texts(LogLevel::debug); }

private:
    const QString m_category;
    mutable std::mutex m_mutex;
    QList<LogLine> m_lines;
};

}  // namespace corvellan::test
