#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Models/AuthTokens.h"

using namespace corvellan;

// The token file, the answers of a token endpoint and the tokens themselves: any bytes are a value or an
// error, and what was read is written so that it reads the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    const WallTime now = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2};
    for (const auto& tokens : {AuthTokens::decode(bytes), AuthTokens::decodeAnswer(bytes, now)}) {
        if (!tokens)
            continue;
        std::ignore = tokens->isValid(now);
        std::ignore = jwtSubject(tokens->accessToken);
        if (AuthTokens::decode(tokens->encode()) != *tokens)
            std::abort();
    }

    const QString token = QString::fromUtf8(bytes);
    std::ignore = jwtSubject(token);
    // A payload of any bytes, in a token of three parts.
    const QByteArray payload = bytes.toByteArray().toBase64(QByteArray::Base64UrlEncoding);
    std::ignore = jwtSubject(QStringLiteral("e30.") + QString::fromLatin1(payload) + QStringLiteral(".c2ln"));
    return 0;
}
