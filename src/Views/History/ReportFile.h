#pragma once

#include <expected>
#include <QString>

#include "Base/DateText.h"
#include "Base/Error.h"
#include "Models/SessionRecord.h"

namespace corvellan {

/// "Session 2026-03-02 10.05 Nordwind.md": good for any file system, whatever the company is called.
[[nodiscard]] QString reportFileName(const SessionRecord& record, const DateStyle& style);

/// Writes the report into `folder`, which is made if need be, readable by the user alone. A file of that name
/// stays; the new one is then numbered.
/// \return the file's path.
[[nodiscard]] std::expected<QString, Error> saveReport(const QString& folder, const SessionRecord& record,
                                                       const DateStyle& style);

}  // namespace corvellan
