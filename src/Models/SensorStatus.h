#pragma once

#include <optional>
#include <QByteArrayView>

#include "Protocol.h"

namespace corvellan {

/// What the coaching server knows of the browser extension, as its REST side tells it. Lenient: a value
/// of the wrong type reads as missing. A plain value.
struct SensorStatus {
    bool sensorConnected = false;  ///< The extension is present.
    /// The call that the extension sees; absent without an entity's type and id.
    std::optional<ExtensionContextPayload> context;

    /// Fails for bytes that are no JSON object, and for nothing else.
    [[nodiscard]] static Decoded<SensorStatus> decode(QByteArrayView json);

    bool operator==(const SensorStatus&) const = default;
};

}  // namespace corvellan
