#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <vector>

#include "Base/Clock.h"
#include "Models/Protocol.h"

namespace corvellan::sandbox {

/// One call as the coaching server keeps it.
struct CallRecord {
    struct Feedback {
        int rating = 0;
        std::optional<QString> note;
        std::optional<QString> featureRequest;
    };

    QString callId;  ///< A UUID in lower case.
    QString sessionId;
    StartSessionPayload start;
    WallTime startedAt;
    std::optional<WallTime> endedAt;  ///< Empty while the call runs.
    std::uint64_t durationSecs = 0;
    int turns = 0;
    CallStateSnapshot state;
    QStringList coachingPoints;
    QStringList transcript;
    bool hasSummary = false;  ///< It ended by "end_session" and not by a lost connection.
    bool sharesScreen = false;
    std::optional<CallOutcome> outcome;
    std::vector<Feedback> feedback;
};

/// The calls of this run of the sandbox, in memory. References stay good while the book lives. One thread.
class CallBook {
public:
    CallRecord& add(CallRecord call);

    /// By the call's own id, in either case. Null when there is none.
    [[nodiscard]] CallRecord* find(const QString& callId);
    /// By the session that the call is or was. Null when there is none.
    [[nodiscard]] const CallRecord* findSession(const QString& sessionId) const;

    /// Only so many of the newest ratings of a call are kept.
    static constexpr std::size_t mostFeedback = 100;
    void addFeedback(CallRecord& call, CallRecord::Feedback feedback);
    void setOutcome(CallRecord& call, CallOutcome outcome);

    /// The call is over, by `end_session` or by a lost connection.
    void finish(CallRecord& call, WallTime at, std::chrono::seconds duration);

    [[nodiscard]] const std::deque<CallRecord>& calls() const { return m_calls; }

    /// Called after each change of a call that is over.
    std::function<void(const CallRecord&)> onChanged = [](const CallRecord&) {};

private:
    void noteChange(const CallRecord& call) const;

    std::deque<CallRecord> m_calls;
};

/// The row of a call list.
[[nodiscard]] QJsonObject listedCall(const CallRecord& call);
/// A call with everything that is kept of it.
[[nodiscard]] QJsonObject wholeCall(const CallRecord& call);

}  // namespace corvellan::sandbox
