#pragma once

#include <chrono>
#include <optional>
#include <QByteArrayView>
#include <QString>
#include <QUrl>

#include "Services/Protocols/HttpClientProtocol.h"

/// What the update badge asks of the feed of new versions. Pure functions, any thread.
namespace corvellan::updatefeed {

/// For everything, from the look-up of the host to the last byte.
inline constexpr std::chrono::seconds timeout{60};
inline constexpr qint64 maxBodyBytes = qint64{1024} * 1024;

/// Where the feed is: path "/appcast.xml" on the coaching server's host and port, over HTTP for "ws" and over
/// HTTPS for "wss". Path, query, fragment and user of the given address don't count.
///
/// \param productionCoachUrl the production coaching server's WebSocket address.
/// \returns absent when that is no such address.
[[nodiscard]] std::optional<QUrl> url(const QString& productionCoachUrl);

/// What asks for the feed, in one GET. Whatever a server answers counts, an error page too.
[[nodiscard]] HttpRequest request(QUrl url);

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
