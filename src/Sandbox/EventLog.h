#pragma once

#include <functional>
#include <QString>

#include "Base/Clock.h"

namespace corvellan::sandbox {

/// What the sandbox tells the person in front of it: one readable line an event. One thread.
class EventLog {
public:
    using Sink = std::function<void(const QString& line)>;

    /// \param sink where lines go, without a line feed; standard output if there is none.
    explicit EventLog(const Clock& clock, Sink sink = {});

    /// "10:00:01.250  coach   what happened". What may hold line feeds is put on one line.
    void event(const QString& who, const QString& what) const;

    /// A line as it stands, for programs that read them.
    void plain(const QString& line) const;

private:
    const Clock& m_clock;
    Sink m_sink;
};

}  // namespace corvellan::sandbox
