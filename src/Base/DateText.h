#pragma once

#include <QByteArray>
#include <QString>

#include "Clock.h"

namespace corvellan {

/// In which way dates are shown to the user.
struct DateStyle {
    QByteArray locale;  ///< An ICU name: "de_DE". Empty is the root locale.
    QString zone;       ///< "Europe/Berlin". An unknown one is UTC.

    /// The user's own.
    [[nodiscard]] static DateStyle system();
};

/// The time of day without a date, in the locale's short form: "9:05 AM", "09:05". Any thread.
[[nodiscard]] QString shortTime(WallTime time, const DateStyle& style);
/// The day without a time, in the locale's medium form: "Mar 2, 2026", "02.03.2026". Any thread.
[[nodiscard]] QString mediumDate(WallTime time, const DateStyle& style);
/// Day and time of day, both short: "3/2/26, 9:05 AM", "02.03.26, 09:05". Any thread.
[[nodiscard]] QString shortDateTime(WallTime time, const DateStyle& style);
/// The day in the medium form and the time of day in the short one: "Mar 2, 2026, 9:05 AM". Any thread.
[[nodiscard]] QString mediumDateShortTime(WallTime time, const DateStyle& style);

}  // namespace corvellan
