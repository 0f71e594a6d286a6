#pragma once

#include <optional>
#include <QStringView>
#include <QUuid>

namespace corvellan {

/// A UUID in its usual form, 8-4-4-4-12 hexadecimal digits in either case, and nothing else: Qt also takes
/// braces. Any thread.
[[nodiscard]] std::optional<QUuid> parseUuid(QStringView text);

}  // namespace corvellan
