#include "AuthTokens.h"

#include <boost/json.hpp>

#include "Protocol.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

namespace json = boost::json;

std::optional<json::object> parseObject(QByteArrayView bytes) {
    boost::system::error_code error;
    auto value = json::parse({bytes.data(), static_cast<std::size_t>(bytes.size())}, error);
    if (error || !value.is_object())
        return std::nullopt;
    return std::move(value.get_object());
}

std::optional<QString> string(const json::object& object, std::string_view key) {
    const auto* const value = object.if_contains(key);
    if (!value || !value->is_string())
        return std::nullopt;
    const auto& text = value->get_string();
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

Error wrongType(QLatin1StringView path) {
    return DecodingError{.kind = DecodingError::Kind::wrongType, .path = path, .detail = {}};
}

}  // namespace

bool AuthTokens::isValid(WallTime now) const {
    if (!expiresAt)
        return true;
    constexpr std::uint64_t marginSeconds = 60;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now).time_since_epoch().count();
    return static_cast<std::uint64_t>(seconds) + marginSeconds < *expiresAt;
}

std::expected<AuthTokens, Error> AuthTokens::decode(QByteArrayView bytes) {
    const auto object = parseObject(bytes);
    if (!object)
        return std::unexpected(DecodingError{.kind = DecodingError::Kind::notJson, .path = {}, .detail = {}});
    AuthTokens tokens;
    const auto accessToken = string(*object, "access_token");
    if (!accessToken)
        return std::unexpected(
            DecodingError{.kind = DecodingError::Kind::missingField, .path = u"access_token"_s, .detail = {}});
    tokens.accessToken = *accessToken;
    if (const auto* const value = object->if_contains("refresh_token"); value && !value->is_null()) {
        tokens.refreshToken = string(*object, "refresh_token");
        if (!tokens.refreshToken)
            return std::unexpected(wrongType("refresh_token"_L1));
    }
    if (const auto* const value = object->if_contains("expires_at"); value && !value->is_null()) {
        boost::system::error_code error;
        const auto number = value->to_number<std::uint64_t>(error);
        if (error)
            return std::unexpected(wrongType("expires_at"_L1));
        tokens.expiresAt = number;
    }
    return tokens;
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
    const auto object = parseObject(*decoded);
    return object ? string(*object, "sub") : std::nullopt;
}

}  // namespace corvellan
