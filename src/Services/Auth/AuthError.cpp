#include "AuthError.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QString AuthError::errorDescription() const {
    switch (kind) {
    case Kind::tokenExchangeFailed: return u"Token exchange failed: "_s + message;
    case Kind::invalidURL: return u"Invalid OAuth URL"_s;
    case Kind::noAuthorizationCode: return u"No authorization code in callback"_s;
    case Kind::cancelled: return u"Authentication cancelled"_s;
    case Kind::refreshFailed: return u"Token refresh failed"_s;
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan
