#pragma once

#include <expected>
#include <QByteArray>
#include <QCoroTask>
#include <QString>
#include <stop_token>

#include "Base/Clock.h"
#include "Base/Error.h"

namespace corvellan {

/// How long the compositor has for one answer.
inline constexpr std::chrono::seconds hyprlandPatience{2};
/// More than any list of windows needs.
inline constexpr qint64 hyprlandReplyLimit = 1 << 20;

/// A struct, since a task can't yield an `expected` of what null converts to.
struct HyprlandReply {
    QByteArray bytes;
};

/// Sends one request to Hyprland's socket and reads until it closes. Fails with a sentence when nothing
/// listens, when the answer is empty or too long, and after `hyprlandPatience`.
QCoro::Task<std::expected<HyprlandReply, Error>> askHyprland(QString socketPath, QByteArray request, Clock& clock,
                                                             std::stop_token stop);

}  // namespace corvellan
