#pragma once

#include <cstdint>
#include <optional>
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <vector>

#include "Base/Clock.h"
#include "Protocol.h"
#include "Types.h"

namespace corvellan {

/// Minutes and seconds without padding: "1m 15s", "60m 0s".
[[nodiscard]] QString formattedDuration(std::int64_t seconds);

/// The stored form of one finished call or training session; the members are the persisted columns,
/// in their order. A plain value.
struct SessionRecord {
    QUuid id;
    WallTime createdDate{};
    std::int64_t durationSecs = 0;
    std::int64_t turns = 0;
    QByteArray meddicData;  ///< `MeddicScore` as JSON; undecodable bytes read as no criterion.
    QByteArray discData;    ///< `BuyerDisc` as JSON; undecodable bytes read as an unknown buyer.
    QStringList coachingPoints;
    QStringList transcript;  ///< Verbatim lines with the prefixes "[Mic] ", "[Audio] ", "[Coach] ".
    std::optional<QString> scenario;
    bool wasTrainMode = false;
    std::optional<QString> companyName;
    std::optional<QString> calendarEventId;
    std::optional<QString> callId;
    std::optional<QString> outcome;  ///< Raw value of `CallOutcome`, not validated.
    std::optional<std::int64_t> feedbackRating;
    std::optional<std::vector<std::optional<QString>>> meddicEvidence;
    std::optional<QString> audienceRaw;  ///< Raw value of `AudienceType`, not validated.

    /// What a new record is made of; see the members of the same names.
    struct Contents {
        std::int64_t durationSecs = 0;
        std::int64_t turns = 0;
        MeddicScore meddic;
        BuyerDisc disc;
        QStringList coachingPoints;
        QStringList transcript;
        std::optional<QString> scenario;
        bool wasTrainMode = false;
        std::optional<QString> companyName;
        std::optional<QString> calendarEventId;
        std::optional<QString> callId;
        AudienceType audience = AudienceType::directSale;
    };

    /// A record with a new id, made at `now`.
    [[nodiscard]] static SessionRecord make(Contents contents, WallTime now);

    [[nodiscard]] MeddicScore meddic() const;
    [[nodiscard]] BuyerDisc disc() const;
    /// An absent or unknown raw value reads as a direct sale.
    [[nodiscard]] AudienceType audience() const;
    [[nodiscard]] QString formattedDuration() const { return corvellan::formattedDuration(durationSecs); }

    bool operator==(const SessionRecord&) const = default;
};

}  // namespace corvellan
