#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Platform/Linux/CaptureHiding/HyprlandReplies.h"

using namespace corvellan;

// Any bytes are an answer or none, and no address that comes out of them could carry a command.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    if (const auto addresses = hyprland::windowAddresses(bytes, 7, QStringLiteral("Corvellan Bram"))) {
        if (addresses->size() > hyprland::windowLimit)
            std::abort();
        for (const QByteArray& address : *addresses) {
            bool isNumber = false;
            static_cast<void>(address.toULongLong(&isNumber, 16));
            if (!isNumber || address.contains(' ') || address.contains('"'))
                std::abort();
        }
    }
    static_cast<void>(hyprland::isOk(bytes));
    static_cast<void>(hyprland::propertyValue(bytes, "no_screen_share"));
    constexpr qsizetype longest = 81;
    if (const QString excerpt = hyprland::excerpt(bytes); excerpt.size() > longest || excerpt.contains(u'\n'))
        std::abort();
    return 0;
}
