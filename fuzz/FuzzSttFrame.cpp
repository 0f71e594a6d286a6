#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Services/SttWire.h"

using namespace corvellan;

// Any bytes are a frame or none, and bytes carried as audio never change how a frame of ours reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    const auto received = sttwire::parse(bytes);
    const bool hasContent = received && !std::holds_alternative<sttwire::Ignored>(received->content);
    if (hasContent && received->type.isEmpty())
        std::abort();

    const auto own = sttwire::parse(sttwire::append(bytes).toLatin1());
    const bool isOurs = own && own->type == QStringLiteral("input_audio_buffer.append");
    if (!isOurs || !std::holds_alternative<sttwire::Ignored>(own->content))
        std::abort();
    return 0;
}
