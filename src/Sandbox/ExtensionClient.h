#pragma once

#include <chrono>
#include <expected>
#include <QString>

#include "SensorBook.h"

namespace corvellan::sandbox {

/// Plays the browser extension: posts a report to the sandbox that runs on this machine, and waits for its answer
/// in an event loop of its own. A sentence for the user either way.
[[nodiscard]] std::expected<QString, QString> sendReport(const SensorReport& report, quint16 coachPort,
                                                         std::chrono::milliseconds limit = std::chrono::seconds{10});

}  // namespace corvellan::sandbox
