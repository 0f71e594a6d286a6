#pragma once

class QHttpServer;

namespace corvellan {
class Clock;
}

namespace corvellan::sandbox {

class Admission;
class CallBook;
class EventLog;
class FrameBook;

/// "/session/<id>/frame" takes a session's screen frames; "/sandbox/frames" tells what came, and
/// "/sandbox/frames/<session id>" shows the last one. What is passed must outlive the server.
void addFrameRoutes(QHttpServer& http, FrameBook& frames, CallBook& calls, const Admission& admission,
                    const Clock& clock, const EventLog& log);

}  // namespace corvellan::sandbox
