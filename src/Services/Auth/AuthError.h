#pragma once

#include <QString>

namespace corvellan {

/// Why a sign-in failed. Travels inside `Error`; failures of the transport and of decoding stand beside it.
struct AuthError {
    enum class Kind { tokenExchangeFailed, invalidURL, noAuthorizationCode, cancelled, refreshFailed };

    Kind kind = Kind::cancelled;
    QString message;  ///< tokenExchangeFailed only: the server's own words, or the listener's.

    [[nodiscard]] QString errorDescription() const;
};

}  // namespace corvellan
