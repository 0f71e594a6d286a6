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

}  // namespace corvellan
