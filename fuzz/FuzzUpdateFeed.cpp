#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Shell/UpdateFeed.h"

using namespace corvellan;

// Any bytes announce a version or none; a version stands in the text, holds no quote, and is never an
// update of itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    const QString version = updatefeed::shortVersionString(bytes);
    if (version.contains(u'"') || updatefeed::isUpdate(version, version))
        std::abort();
    const bool stands = bytes.contains("sparkle:shortVersionString=\"" + version.toUtf8() + '"');
    if (!version.isEmpty() && !stands)
        std::abort();

    const auto url = updatefeed::url(QString::fromUtf8(bytes));
    const bool isFeed = !url || (url->path() == QStringLiteral("/appcast.xml") && !url->host().isEmpty());
    if (!isFeed)
        std::abort();
    return 0;
}
