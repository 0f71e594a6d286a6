#pragma once

class QHttpServer;

namespace corvellan::sandbox {

class AccountBook;
class EventLog;
struct Faults;

/// The authorization server: "/api/oauth/authorize" asks the user and sends the browser back with a code,
/// "/api/oauth/token" gives tokens for codes and refresh tokens, "/api/oauth/revoke" takes them back. What is
/// passed must outlive the server.
void addSignInRoutes(QHttpServer& http, AccountBook& accounts, const Faults& faults, const EventLog& log);

}  // namespace corvellan::sandbox
