#pragma once

#include <array>
#include <optional>
#include <QString>

#include "Base/DateText.h"
#include "Models/SessionRecord.h"

namespace corvellan {

/// The evidence for each criterion; absent beyond the end of a shorter list.
[[nodiscard]] std::array<std::optional<QString>, meddicCriteria> evidenceOf(const SessionRecord& record);

/// "Dominant", "Unknown".
[[nodiscard]] QString discName(const SessionRecord& record);

/// The report on a session that is copied and shared, in Markdown.
[[nodiscard]] QString sessionShareText(const SessionRecord& record, const DateStyle& style);

}  // namespace corvellan
