#pragma once

class QHttpServer;

namespace corvellan::sandbox {

class CallBook;
class ProviderServer;

/// The REST side of the coaching server: "/health", "/calls", "/calls/<id>", and "/sandbox/audio" for the
/// programs that drive the sandbox. What is passed must outlive the server.
void addCoachRoutes(QHttpServer& http, const CallBook& calls, const ProviderServer& provider);

}  // namespace corvellan::sandbox
