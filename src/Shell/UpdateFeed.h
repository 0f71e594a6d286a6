#pragma once

#include <optional>
#include <QByteArrayView>
#include <QString>
#include <QUrl>

/// What the update badge asks of the feed of new versions. Pure functions, any thread.
namespace corvellan::updatefeed {

/// Where the feed is: path "/appcast.xml" on the coaching server's host and port, over HTTP for "ws" and over
/// HTTPS for "wss". Path, query, fragment and user of the given address don't count.
///
/// \param productionCoachUrl the production coaching server's WebSocket address.
/// \returns absent when that is no such address.
[[nodiscard]] std::optional<QUrl> url(const QString& productionCoachUrl);

/// The version that the feed's first entry announces: what stands between the first
/// `sparkle:shortVersionString="` and the next double quote. Nothing is parsed as XML.
///
/// \returns empty when there is none, or when `body` is no UTF-8.
[[nodiscard]] QString shortVersionString(QByteArrayView body);

/// The feed's version is another one, and the running one sorts before it as text, by code points. Not by
/// numbers: "1.10" sorts before "1.9".
///
/// \param runningVersion empty when it isn't known.
[[nodiscard]] bool isUpdate(const QString& runningVersion, const QString& feedVersion);

}  // namespace corvellan::updatefeed
