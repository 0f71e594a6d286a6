#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <QJsonDocument>

#include "Sandbox/CallScript.h"

using corvellan::sandbox::CallScript;

// Up to a zero byte a script, behind it the lengths of its lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    const qsizetype end = bytes.indexOf('\0');
    auto script = CallScript::parse(end < 0 ? bytes : bytes.first(end));
    if (!script) {
        if (script.error().errorDescription().isEmpty())
            std::abort();
        return 0;
    }
    if (end >= 0)
        std::ignore = script->useLengths(bytes.sliced(end + 1));
    double before = 0;
    for (const auto& line : script->lines) {
        if (line.text.isEmpty() || line.seconds <= 0 || line.startSeconds < before)
            std::abort();
        before = line.startSeconds;
    }
    if (!QJsonDocument::fromJson(script->json()).isObject() || script->list().isEmpty())
        std::abort();
    return 0;
}
