#pragma once

#include <optional>
#include <QString>

/// Values that the back-end sends now in one type, now in another. Present ones never fail to decode.
namespace corvellan {

/// An identifier that comes as a number or as a string.
struct StringOrInt {
    /// The decimal text of a whole number of 64 signed bits ("42", also for 42.0), a string as it stands,
    /// empty for everything else.
    QString stringValue;

    bool operator==(const StringOrInt&) const = default;
};

/// A number that may come as a string.
struct StringOrNumber {
    /// A number, or a string that is one from end to end ("12.5", "-3e2", no blanks). Absent for everything
    /// else. Never infinite.
    std::optional<double> value;

    bool operator==(const StringOrNumber&) const = default;
};

}  // namespace corvellan
