#pragma once

#include "Base/DebugLog.h"
#include "Base/Log.h"
#include "Protocols/BriefingServiceProtocol.h"
#include "Protocols/HttpClientProtocol.h"

namespace corvellan {

/// The back-end over the shared HTTP session. See the contract for what its callers need.
class BriefingService final : public BriefingServiceProtocol {
public:
    /// Outlives what is under way.
    ///
    /// \param baseUrl scheme and host, without a path. All else outlives the service.
    BriefingService(HttpClientProtocol& http, QString baseUrl, const DebugLog& debugLog);

    Answer<std::vector<CalendarMeeting>> fetchUpcoming(QString token, int maxResults) override;
    Answer<std::vector<ResolvedCompany>> searchCompany(QString token, QString query, int limit) override;
    Answer<SalesBrief> fetchBrief(QString token, CompanyQuery query) override;
    Answer<HandoffResponse> fetchHandoff(QString token, CompanyQuery query) override;
    Answer<TimelineResponse> fetchTimeline(QString token, std::optional<QString> companyId,
                                           std::optional<QString> contactId, int daysBack) override;

private:
    HttpClientProtocol& m_http;
    QString m_baseUrl;
    const DebugLog& m_debugLog;
    const Logger m_logger{"Briefing"};
};

}  // namespace corvellan
