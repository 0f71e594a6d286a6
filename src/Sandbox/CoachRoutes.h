#pragma once

#include <QString>

class QHttpServer;

namespace corvellan::sandbox {

class CallBook;
class ProviderServer;

/// The REST side of the coaching server: "/health", "/calls", "/calls/<id>", the feed of new versions with the
/// page that it leads to, and "/sandbox/audio" for the programs that drive the sandbox. Calls and provider must
/// outlive the server.
///
/// \param feedVersion what the feed announces.
void addCoachRoutes(QHttpServer& http, const CallBook& calls, const ProviderServer& provider,
                    const QString& feedVersion);

}  // namespace corvellan::sandbox
