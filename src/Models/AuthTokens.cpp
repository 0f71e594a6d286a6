#include "AuthTokens.h"

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <limits>

#include "JsonReading.h"
#include "JsonWriting.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

/// Reads fields of the one object that `bytes` hold; anything else is a failure.
template <typename Read>
std::expected<void, Error> readObject(QByteArrayView bytes, Read read) {
    JsonDocument document;
    const auto root = document.parse(bytes);
    if (!root)
        return std::unexpected(Error{root.error()});
    ValueReader values;
    if (const auto* const object = (*root)->if_object()) {
        FieldReader reader{*object, values};
        read(reader);
    } else {
        values.fail(DecodingError::Kind::wrongType, {}, u"expected an object"_s);
    }
    if (values.failure())
        return std::unexpected(Error{*values.failure()});
    return {};
}

/// Unix time in whole seconds.
std::uint64_t unixSeconds(WallTime time) {
    return static_cast<std::uint64_t>(std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count());
}

}  // namespace

bool AuthTokens::isValid(WallTime now) const {
    if (!expiresAt)
        return true;
    constexpr std::uint64_t marginSeconds = 60;
    return unixSeconds(now) + marginSeconds < *expiresAt;
}

std::expected<AuthTokens, Error> AuthTokens::decode(QByteArrayView json) {
    AuthTokens tokens;
    const auto read = readObject(json, [&](FieldReader& reader) {
        reader.field("access_token", tokens.accessToken);
        reader.field("refresh_token", tokens.refreshToken);
        reader.field("expires_at", tokens.expiresAt);
    });
    if (!read)
        return std::unexpected(read.error());
    return tokens;
}

std::expected<AuthTokens, Error> AuthTokens::decodeAnswer(QByteArrayView json, WallTime now) {
    AuthTokens tokens;
    std::optional<std::uint64_t> expiresIn;
    const auto read = readObject(json, [&](FieldReader& reader) {
        reader.field("access_token", tokens.accessToken);
        reader.field("refresh_token", tokens.refreshToken);
        reader.field("expires_in", expiresIn);
    });
    if (!read)
        return std::unexpected(read.error());
    if (expiresIn) {
        const auto seconds = unixSeconds(now);
        if (*expiresIn > std::numeric_limits<std::uint64_t>::max() - seconds)
            return std::unexpected(Error{DecodingError{DecodingError::Kind::outOfRange, u"expires_in"_s, {}}});
        tokens.expiresAt = seconds + *expiresIn;
    }
    return tokens;
}

QByteArray AuthTokens::encode() const {
    boost::json::object object;
    FieldWriter writer{object};
    writer.field("access_token", accessToken);
    writer.field("refresh_token", refreshToken);
    writer.field("expires_at", expiresAt);
    return serialized(boost::json::value(std::move(object)));
}

std::optional<QString> jwtSubject(const QString& token) {
    const auto parts = token.split(u'.');
    if (parts.size() != 3)
        return std::nullopt;
    auto payload = parts[1].toLatin1();
    payload.replace('-', '+').replace('_', '/');
    while (payload.size() % 4 != 0)
        payload.append('=');
    const auto decoded = QByteArray::fromBase64Encoding(payload, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    QString subject;
    const auto read = readObject(*decoded, [&](FieldReader& reader) { reader.field("sub", subject); });
    return read ? std::optional{subject} : std::nullopt;
}

}  // namespace corvellan
