#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Platform/Linux/Permissions/AutostartEntry.h"

using namespace corvellan;

// Any bytes are an entry or none, and an entry of ours names any path so that it is read back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    parseAutostartEntry(bytes);

    const QString path = u'/' + QString::fromUtf8(bytes);
    const QByteArray written = autostartEntryFor(path);
    const auto entry = parseAutostartEntry(written);
    const bool isReadBack = entry && entry->program == path && entry->tryExec == path;
    if (!isReadBack && written.size() <= largestAutostartEntryBytes)
        std::abort();
    return 0;
}
