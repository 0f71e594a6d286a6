#include "Log.h"

#include <cstdio>
#include <mutex>

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr auto subsystem = "com.teskara.corvellan-bram";

std::mutex& sinkMutex() {
    static std::mutex mutex;
    return mutex;
}

std::function<void(const LogLine&)>& sink() {
    static std::function<void(const LogLine&)> current;
    return current;
}

const char* levelName(LogLevel level) {
    switch (level) {
    case LogLevel::debug: return "debug";
    case LogLevel::info: return "info";
    case LogLevel::error: return "error";
    }
    Q_UNREACHABLE();
}

}  // namespace

void setLogSink(std::function<void(const LogLine&)> next) {
    const std::scoped_lock lock{sinkMutex()};
    sink() = std::move(next);
}

void Logger::write(LogLevel level, const QString& text) const {
    const std::scoped_lock lock{sinkMutex()};
    if (sink()) {
        sink()({.category = QString::fromLatin1(m_category), .level = level, .text = text});
        return;
    }
    // Debug lines tell of every frame; they are for sinks that ask for them.
    if (level == LogLevel::debug)
        return;
    std::fprintf(stderr, "%s %s %s: %s\n", subsystem, m_category, levelName(level), qUtf8Printable(text));
}

void shellLog(const QString& text) {
    const std::scoped_lock lock{sinkMutex()};
    if (sink()) {
        sink()({.category = u"Shell"_s, .level = LogLevel::info, .text = text});
        return;
    }
    std::fprintf(stderr, "[Corvellan] %s\n", qUtf8Printable(text));
}

}  // namespace corvellan
