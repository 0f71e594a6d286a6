#pragma once

#include <chrono>
#include <expected>
#include <optional>
#include <QString>
#include <QStringList>

namespace corvellan::sandbox {

/// What the sandbox was told to do wrong. Each is off unless named.
struct Faults {
    struct CloseAt {
        int step = 0;  ///< After so many messages of the coach; 0 closes in place of the first.
        int code = 1011;
    };

    bool unknownEnum = false;       ///< A tip of a type that no client knows goes out before each good one.
    bool refuseToken = false;       ///< The provider refuses every token.
    bool noToken = false;           ///< The session starts without tokens.
    bool silence = false;           ///< The coach never answers.
    bool errorBeforeStart = false;  ///< The coach refuses the session.
    bool refuseCode = false;        ///< The token endpoint refuses every code.
    bool refuseRefresh = false;     ///< The token endpoint refuses every refresh token.
    bool providerError = false;     ///< The provider reports an error with the first audio of each side.
    std::optional<CloseAt> closeAt;
    std::optional<std::chrono::milliseconds> slowSummary;

    /// Switches on the fault of this name: "unknown-enum", "close-at-step-3:1001". The error tells what is
    /// wrong with it.
    [[nodiscard]] std::expected<void, QString> add(const QString& name);

    /// "name  what it does", for the help.
    [[nodiscard]] static QStringList help();
};

}  // namespace corvellan::sandbox
