#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <map>
#include <QString>

namespace corvellan {

/// What the sound server says of the source that programs record by default.
struct PulseDefaultSource {
    /// The server's own number for it.
    std::uint32_t index = 0;
    QString name;
    /// The part of the server that made it: "module-echo-cancel.c", "PipeWire".
    QString driver;
    /// It gives what an output plays: no microphone.
    bool isMonitor = false;
    /// "device.class", "device.description", ... as the server and its modules set them.
    std::map<QString, QString> properties;
};

enum class PulseLookUpFailure {
    noServer,  ///< Nothing answers.
    refused,   ///< A server answers, and this program is not allowed to ask it.
    noSource,  ///< There is nothing to record.
};

/// Asks the sound server once. Any thread but an audio one: it blocks until the answer is there, on a
/// connection of its own, and counts a server as absent that is silent for as long as `limit`.
[[nodiscard]] std::expected<PulseDefaultSource, PulseLookUpFailure> readDefaultSource(
    std::chrono::milliseconds limit = std::chrono::seconds{2});

}  // namespace corvellan
