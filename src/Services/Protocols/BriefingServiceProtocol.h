#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <QCoroTask>
#include <QString>
#include <vector>

#include "Base/Error.h"
#include "Models/Briefing.h"

namespace corvellan {

/// Why the back-end's answer is none. Travels inside `Error`, beside transport and decoding failures.
struct BriefingError {
    enum class Kind { httpError, invalidURL, decodingFailed };

    Kind kind = Kind::httpError;
    int status = 0;  ///< httpError only.

    /// One sentence for the user.
    [[nodiscard]] QString errorDescription() const {
        switch (kind) {
        case Kind::httpError: return QStringLiteral("Briefing API error (HTTP %1)").arg(status);
        case Kind::invalidURL: return QStringLiteral("Invalid briefing URL");
        case Kind::decodingFailed: return QStringLiteral("Failed to decode briefing response");
        }
        Q_UNREACHABLE();
    }
};

/// Which company a brief or a handoff is about; what is absent is not sent.
struct CompanyQuery {
    std::optional<QString> company;
    std::optional<std::int64_t> customerId;
    std::optional<QString> hubspotId;

    bool operator==(const CompanyQuery&) const = default;
};

/// The chat/briefings back-end, at one fixed address whichever coaching server is chosen. Stateless: calls run
/// side by side, nothing is retried and no token refreshed. Callers are resumed where they were.
///
/// Every operation takes the access token and fails with `BriefingError` for a status other than 200, which
/// a 401 is too, with `DecodingError`, or with the transport's error.
class BriefingServiceProtocol {
public:
    template <typename T>
    using Answer = QCoro::Task<std::expected<T, Error>>;

    virtual ~BriefingServiceProtocol() = default;

    /// The next meetings of the user's calendar, never more than asked for. Leaves its traces in the debug log.
    virtual Answer<std::vector<CalendarMeeting>> fetchUpcoming(QString token, int maxResults) = 0;
    /// Matches of a name, never more than `limit`. The name may be empty: guards are the caller's.
    virtual Answer<std::vector<ResolvedCompany>> searchCompany(QString token, QString query, int limit) = 0;
    virtual Answer<SalesBrief> fetchBrief(QString token, CompanyQuery query) = 0;
    virtual Answer<HandoffResponse> fetchHandoff(QString token, CompanyQuery query) = 0;
    virtual Answer<TimelineResponse> fetchTimeline(QString token, std::optional<QString> companyId,
                                                   std::optional<QString> contactId, int daysBack) = 0;
};

}  // namespace corvellan
