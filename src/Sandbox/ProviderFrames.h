#pragma once

#include <expected>
#include <QByteArray>
#include <QString>
#include <variant>

#include "UtteranceFinder.h"

/// The wire language of the transcription provider, its side. Written with another JSON library than
/// the program's own client, so that both must be right. Pure functions.
namespace corvellan::sandbox {

struct SessionUpdate {
    QString model;
    QString language;  ///< Empty when none is asked for.
    TurnDetection detection;
};

struct AudioAppend {
    QByteArray pcm;  ///< Whole samples, at least one.
};

using ProviderRequest = std::variant<SessionUpdate, AudioAppend>;

/// What is wrong with a frame, in the provider's own words.
struct ProviderFault {
    QString code;
    QString message;
    QString parameter;  ///< The key path concerned. Empty when it is the whole frame.
};

/// Strict: any bytes give a request or a fault, unknown keys included.
[[nodiscard]] std::expected<ProviderRequest, ProviderFault> decodeProviderRequest(const QByteArray& frame);

namespace frames {

[[nodiscard]] QByteArray error(const ProviderFault& fault);
[[nodiscard]] QByteArray sessionCreated(const QString& sessionId);
[[nodiscard]] QByteArray sessionUpdated(const QString& sessionId, const SessionUpdate& update);
[[nodiscard]] QByteArray speechStarted(const QString& itemId, qint64 audioMilliseconds);
[[nodiscard]] QByteArray speechStopped(const QString& itemId, qint64 audioMilliseconds);
[[nodiscard]] QByteArray committed(const QString& itemId);
[[nodiscard]] QByteArray delta(const QString& itemId, const QString& text);
[[nodiscard]] QByteArray completed(const QString& itemId, const QString& text);

}  // namespace frames

}  // namespace corvellan::sandbox
