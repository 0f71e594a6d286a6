#pragma once

#include <QString>

class QHttpServer;

namespace corvellan::sandbox {

class Admission;
class BuyerBook;
class CallBook;
class EventLog;
class ProviderServer;

/// What the coach's REST side tells of and writes to.
struct CoachRest {
    CallBook& calls;
    const ProviderServer& provider;
    const BuyerBook& buyers;
    const Admission& admission;
    const EventLog& log;
    QString feedVersion;  ///< What the feed of new versions announces.
};

/// "/health", "/calls", "/calls/<id>" with its "/feedback" and "/outcome", "/scenarios", the feed of new versions
/// with the page that it leads to, and "/sandbox/audio" for the programs that drive the sandbox. What `rest` refers
/// to must outlive the server.
void addCoachRoutes(QHttpServer& http, const CoachRest& rest);

}  // namespace corvellan::sandbox
