#pragma once

#include <cstdint>
#include <optional>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <vector>

#include "Base/Clock.h"
#include "Protocol.h"
#include "SessionRecord.h"

/// The coaching server's list of calls. Plain values; every function is pure and callable on any thread.
namespace corvellan {

/// What the server keeps of one MEDDIC criterion.
struct ServerCriterion {
    bool confirmed = false;

    bool operator==(const ServerCriterion&) const = default;
};

struct ServerMeddic {
    std::optional<ServerCriterion> metrics;
    std::optional<ServerCriterion> economic_buyer;
    std::optional<ServerCriterion> decision_criteria;
    std::optional<ServerCriterion> decision_process;
    std::optional<ServerCriterion> identify_pain;
    std::optional<ServerCriterion> champion;

    /// A missing criterion is not met.
    [[nodiscard]] MeddicScore toMeddicScore() const;

    bool operator==(const ServerMeddic&) const = default;
};

/// The lenient counterpart of `BuyerDisc`.
struct ServerDisc {
    std::optional<QString> type;
    std::optional<QString> confidence;
    std::optional<QString> signals_;  ///< "signals" in JSON, which is a keyword of Qt's.

    /// A missing or unknown type is unknown, a missing or unknown confidence low, missing signals empty.
    [[nodiscard]] BuyerDisc toBuyerDisc() const;

    bool operator==(const ServerDisc&) const = default;
};

/// One call that the server keeps. Members bear the keys of its JSON.
struct ServerCallRecord {
    QUuid id;
    QString session_id;
    QString mode;  ///< "train" marks a training session.
    std::optional<QString> company_name;
    std::optional<QString> scenario;
    WallTime started_at{};
    WallTime ended_at{};
    std::int64_t duration_sec = 0;
    std::int64_t turns = 0;
    ServerMeddic meddic;
    ServerDisc disc;
    QStringList coaching_points;
    std::optional<QString> calendar_event_id;
    std::optional<QString> outcome;

    /// The id in lower case, by which records are told apart.
    [[nodiscard]] QString callId() const;

    /// A new record of this call, dated at its start; without a transcript, since the list has none.
    [[nodiscard]] SessionRecord toSessionRecord() const;

    bool operator==(const ServerCallRecord&) const = default;
};

/// The answer in its order. One bad call, down to its dates, fails all of it: dates are ISO 8601 with date,
/// time and zone ("Bad date: " and the text otherwise), ids are UUIDs.
[[nodiscard]] Decoded<std::vector<ServerCallRecord>> decodeServerCalls(QByteArrayView json);

}  // namespace corvellan
