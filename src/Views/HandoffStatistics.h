#pragma once

#include <optional>
#include <QList>
#include <QString>

namespace corvellan {

struct HandoffMeta;

/// One figure of a handoff, as a symbol and a text.
struct HandoffStatistic {
    QString symbol;
    QString text;

    bool operator==(const HandoffStatistic&) const = default;
};

/// Devices, calls and e-mails, in this order; each only when it is told and at least 1.
[[nodiscard]] QList<HandoffStatistic> handoffStatistics(const std::optional<HandoffMeta>& meta);

}  // namespace corvellan
