#pragma once

#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <utility>
#include <variant>
#include <vector>

/// The transcription provider's dialect: headers, message types and JSON shapes. Providers change
/// theirs, so all of it stands here. Pure functions, callable on any thread.
namespace corvellan::sttwire {

/// The headers of the upgrade request.
[[nodiscard]] std::vector<std::pair<QByteArray, QByteArray>> headers(const QString& ephemeralToken);

/// The first message of a connection: format, model, language and turn detection.
[[nodiscard]] QString sessionUpdate();

/// The message that carries one batch of PCM bytes.
[[nodiscard]] QString append(QByteArrayView pcm);

/// A partial piece of the current utterance.
struct Delta {
    QString text;
};
/// A finished utterance, maybe a blank one.
struct Completed {
    QString transcript;
};
/// The provider's complaint, with its own words if they could be read.
struct Failure {
    std::optional<QString> message;
};
/// A type that means nothing to this client, or one whose field is not as it should be.
struct Ignored {};

/// One frame of the provider.
struct Received {
    QString type;
    std::variant<Ignored, Delta, Completed, Failure> content;
};

/// Empty for what is not a JSON object with a string "type". Any bytes may come.
[[nodiscard]] std::optional<Received> parse(QByteArrayView frame);

}  // namespace corvellan::sttwire
