#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Services/Auth/CallbackRequest.h"
#include "Services/Auth/TokenEndpoint.h"

using namespace corvellan;

// Whatever comes to the port that the browser is sent back to, and whatever a token endpoint refuses with.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    const auto code = callback::code(bytes);
    if (!code && code.error().kind != AuthError::Kind::noAuthorizationCode)
        std::abort();
    std::ignore = oauth::refusalText(bytes);

    // Any text survives the way through a query.
    if (const QString text = QString::fromUtf8(bytes); text.toUtf8() == bytes) {
        const auto same = callback::code("GET /callback?code=" + bytes.toPercentEncoding() + " HTTP/1.1\r\n\r\n");
        if (!same || *same != text)
            std::abort();
    }
    return 0;
}
