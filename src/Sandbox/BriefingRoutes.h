#pragma once

class QHttpServer;

namespace corvellan {
class Clock;
}

namespace corvellan::sandbox {

class AccountBook;
class CustomerBook;
class EventLog;

/// The briefings under "/api/briefings": upcoming meetings, the company search, briefs, handoff notes and
/// timelines, for whoever brings a good access token. What is passed must outlive the server.
void addBriefingRoutes(QHttpServer& http, const AccountBook& accounts, const CustomerBook& customers,
                       const Clock& clock, const EventLog& log);

}  // namespace corvellan::sandbox
