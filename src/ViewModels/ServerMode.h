#pragma once

#include <array>

#include "Models/EnumTable.h"

namespace corvellan {

/// Which coaching server the program talks to.
enum class ServerMode { production, local, custom };

struct ServerModeRow {
    ServerMode value;
    std::string_view raw;
    std::string_view label;
};

inline constexpr std::array serverModeRows{
    ServerModeRow{ServerMode::production, "production", "Production"},
    ServerModeRow{ServerMode::local, "local", "Local (dev)"},
    ServerModeRow{ServerMode::custom, "custom", "Custom"},
};

[[nodiscard]] constexpr std::string_view rawValue(ServerMode mode) {
    return rowOf(serverModeRows, mode).raw;
}
[[nodiscard]] inline QString label(ServerMode mode) {
    return tableText(rowOf(serverModeRows, mode).label);
}
/// The mode that preferences hold; anything that names none is production.
[[nodiscard]] inline ServerMode storedServerMode(const std::optional<QString>& stored) {
    return valueOf(serverModeRows, stored.value_or(QString{}).toStdString()).value_or(ServerMode::production);
}

}  // namespace corvellan
