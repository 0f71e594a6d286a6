#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <QJsonObject>
#include <QString>

#include "Base/Clock.h"
#include "Models/Protocol.h"

namespace corvellan::sandbox {

class CustomerBook;

/// What the browser extension reports of the page that its user is on.
struct SensorReport {
    enum class Event {
        context,    ///< Which company or contact the user looks at.
        callStart,  ///< A call has begun.
        callEnd,    ///< It is over.
        disconnect  ///< The extension goes.
    };

    Event event = Event::context;
    std::optional<QString> entityType;
    std::optional<QString> entityId;
    std::optional<QString> displayName;
    std::optional<QString> companyName;
    std::optional<QString> hubspotCompanyId;

    /// {"event": "call_start", "company_name": ...}, with the keys that the coach's own messages have. The error is
    /// a sentence. Texts have at most `longestText` characters.
    [[nodiscard]] static std::expected<SensorReport, QString> decode(const QJsonObject& json);
    [[nodiscard]] QJsonObject json() const;

    static constexpr qsizetype longestText = 500;
};

/// What the coaching server knows of the browser extension. One thread.
class SensorBook {
public:
    struct State {
        bool isConnected = false;
        std::optional<ExtensionContextPayload> context;
        std::optional<WallTime> callStartedAt;  ///< While a call runs.

        bool operator==(const State&) const = default;
    };

    [[nodiscard]] const State& state() const { return m_state; }
    void restore(State state) { m_state = std::move(state); }
    /// Called after each report.
    std::function<void()> onChanged = [] {};

    /// What the clients that listen are to be told. Nothing when the extension has gone. What a report leaves open
    /// comes from the customers, or from the context before.
    std::optional<ServerMsg> take(const SensorReport& report, const CustomerBook& customers, WallTime now);

    /// The answer to clients that ask.
    [[nodiscard]] QJsonObject status() const;

private:
    std::optional<ServerMsg> apply(const SensorReport& report, const CustomerBook& customers, WallTime now);

    State m_state;
};

}  // namespace corvellan::sandbox
