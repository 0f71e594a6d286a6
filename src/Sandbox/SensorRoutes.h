#pragma once

#include <functional>

#include "Models/Protocol.h"

class QHttpServer;

namespace corvellan {
class Clock;
}

namespace corvellan::sandbox {

class Admission;
class CustomerBook;
class EventLog;
class SensorBook;

/// Tells the clients that listen; how many there are.
using TellListeners = std::function<int(const ServerMsg&)>;

/// "/ext/sensor": the browser extension posts its reports there, and clients ask how it stands. What is passed
/// must outlive the server.
void addSensorRoutes(QHttpServer& http, SensorBook& sensor, const CustomerBook& customers, TellListeners tell,
                     const Admission& admission, const Clock& clock, const EventLog& log);

}  // namespace corvellan::sandbox
