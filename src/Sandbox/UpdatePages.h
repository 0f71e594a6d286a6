#pragma once

#include <QByteArray>
#include <QString>

namespace corvellan::sandbox {

/// The feed of new versions: RSS with one entry, which announces `version`.
///
/// \param downloadUrl where the entry leads to.
[[nodiscard]] QByteArray updateFeed(const QString& version, const QString& downloadUrl);

/// What a browser shows in place of a download.
[[nodiscard]] QByteArray downloadPage(const QString& version);

}  // namespace corvellan::sandbox
