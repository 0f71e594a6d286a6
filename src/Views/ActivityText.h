#pragma once

#include <QString>

#include "Base/DateText.h"
#include "Models/Types.h"

/// How notes and events of a company are shown. Pure functions, callable from any thread.
namespace corvellan {

/// The day of an ISO 8601 stamp, with or without fractional seconds; any other text stands as it is.
[[nodiscard]] QString formatNoteDate(const QString& text, const DateStyle& style);
/// As `formatNoteDate`, with the time of day.
[[nodiscard]] QString formatEventDate(const QString& text, const DateStyle& style);

/// The symbol of an event's type. Types are told apart by case.
[[nodiscard]] QString timelineEventIcon(QStringView type);
[[nodiscard]] ColorRole timelineEventColor(QStringView type);

}  // namespace corvellan
