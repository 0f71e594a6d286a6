#pragma once

#include <functional>
#include <QString>

namespace corvellan {

enum class LogLevel { debug, info, error };

/// One line of the system log: the category names the service ("Session", "WebSocket", ...).
struct LogLine {
    QString category;
    LogLevel level = LogLevel::info;
    QString text;
};

/// Writes lines of one category to the system log, under the subsystem
/// "com.teskara.corvellan-bram". Callable from any thread but the audio call-backs.
/// A whole token never reaches a log.
class Logger {
public:
    explicit Logger(const char* category) : m_category(category) {}

    void debug(const QString& text) const { write(LogLevel::debug, text); }
    void info(const QString& text) const { write(LogLevel::info, text); }
    void error(const QString& text) const { write(LogLevel::error, text); }

private:
    void write(LogLevel level, const QString& text) const;

    const char* m_category;
};

/// Where all lines go in place of standard error; null puts standard error back. The sink is called
/// on the thread that logs, one line at a time.
void setLogSink(std::function<void(const LogLine&)> sink);

/// A plain line of the program's shell, with the prefix "[Corvellan] ", on standard error. A sink gets it
/// as a line of the category "Shell", without the prefix.
void shellLog(const QString& text);

}  // namespace corvellan
