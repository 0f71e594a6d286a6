#pragma once

#include <QString>
#include <QUrl>

namespace corvellan {

/// The URL's absolute string as logs hold it: the value of a query item `token` is masked, since a
/// whole token never reaches a log and the coach's address carries one.
[[nodiscard]] QString urlForLog(const QUrl& url);

}  // namespace corvellan
