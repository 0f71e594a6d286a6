#include "CallbackRequest.h"

#include <cctype>
#include <QList>
#include <QStringDecoder>

namespace corvellan::callback {

using namespace Qt::StringLiterals;

namespace {

/// Empty when the bytes are not UTF-8.
std::optional<QString> text(QByteArrayView bytes) {
    QStringDecoder decode{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    QString decoded = decode(bytes);
    return decode.hasError() ? std::nullopt : std::optional{std::move(decoded)};
}

/// Empty for a "%" without two digits behind it, and for what is no text then. "+" stays as it is.
std::optional<QString> percentDecoded(QByteArrayView encoded) {
    QByteArray bytes;
    bytes.reserve(encoded.size());
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        if (encoded[i] != '%') {
            bytes.append(encoded[i]);
            continue;
        }
        const auto digits = encoded.sliced(i + 1, std::min<qsizetype>(2, encoded.size() - i - 1));
        bool isNumber = false;
        const int value = digits.toInt(&isNumber, 16);
        const bool areDigits = digits.size() == 2 && std::isxdigit(static_cast<unsigned char>(digits[0])) != 0;
        if (!isNumber || !areDigits)
            return std::nullopt;
        bytes.append(static_cast<char>(value));
        i += 2;
    }
    return text(bytes);
}

/// The second word of the request line.
QByteArray target(const QByteArray& request) {
    qsizetype start = 0;
    while (QByteArrayView{request}.sliced(start).startsWith("\r\n"))
        start += 2;
    const qsizetype end = request.indexOf("\r\n", start);
    const QByteArray line = request.sliced(start, (end < 0 ? request.size() : end) - start);
    return line.split(' ').value(1);
}

}  // namespace

std::expected<std::optional<QString>, AuthError> code(QByteArrayView request) {
    if (request.isEmpty() || !text(request))
        return std::unexpected(AuthError{.kind = AuthError::Kind::noAuthorizationCode, .message = {}});
    const QByteArray url = target(request.toByteArray());
    const QByteArray address = url.first(url.indexOf('#') < 0 ? url.size() : url.indexOf('#'));
    const qsizetype question = address.indexOf('?');
    if (question < 0)
        return std::nullopt;
    for (const QByteArray& item : address.sliced(question + 1).split('&')) {
        const qsizetype equals = item.indexOf('=');
        if (percentDecoded(equals < 0 ? item : item.first(equals)) != u"code"_s)
            continue;
        return equals < 0 ? std::nullopt : percentDecoded(QByteArrayView{item}.sliced(equals + 1));
    }
    return std::nullopt;
}

QByteArray answer() {
    static const QByteArray body{"<html><body><h2>Authenticated!</h2><p>You can close this tab.</p></body></html>"};
    return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

}  // namespace corvellan::callback
