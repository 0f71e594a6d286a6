#pragma once

#include <expected>
#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include "AuthError.h"

/// What comes in on the port that the browser is sent back to.
namespace corvellan::callback {

/// The authorization code of a request, percent-decoded; it may be the empty text. Nothing when the request
/// carries none, as a browser's for its icon: the first query item named `code` counts, whatever the path,
/// and one without "=" or one that does not decode to text is no code.
///
/// The error is `noAuthorizationCode`: nothing came, or it is not text.
[[nodiscard]] std::expected<std::optional<QString>, AuthError> code(QByteArrayView request);

/// What every client gets to read.
[[nodiscard]] QByteArray answer();

}  // namespace corvellan::callback
