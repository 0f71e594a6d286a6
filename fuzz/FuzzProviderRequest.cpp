#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <QJsonDocument>
#include <vector>

#include "Sandbox/AccountBook.h"
#include "Sandbox/FormFields.h"
#include "Sandbox/Phrases.h"
#include "Sandbox/ProviderFrames.h"
#include "Sandbox/WavFile.h"
#include "Sandbox/WebSocketDoor.h"

using namespace corvellan::sandbox;

// Everything of the sandbox that takes bytes from a client, and the finder behind it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes{reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
    std::ignore = parseRequestHead(bytes);
    std::ignore = decodeWav(bytes);
    std::ignore = parseForm(bytes);
    static const corvellan::SystemClock clock;
    static const AccountBook accounts{{}, clock};
    if (accounts.userOf(QString::fromUtf8(bytes)))
        std::abort();
    for (const auto& sentence : sentences(QString::fromUtf8(bytes)))
        if (sentence.words.isEmpty())
            std::abort();

    const auto request = decodeProviderRequest(bytes);
    if (!request) {
        if (!QJsonDocument::fromJson(frames::error(request.error())).isObject())
            std::abort();
        return 0;
    }
    const auto* append = std::get_if<AudioAppend>(&*request);
    if (!append)
        return 0;
    if (append->pcm.isEmpty() || append->pcm.size() % 2 != 0)
        std::abort();
    std::vector<std::int16_t> samples(static_cast<std::size_t>(append->pcm.size()) / 2);
    std::memcpy(samples.data(), append->pcm.constData(), samples.size() * 2);
    // A low rate makes windows of a few samples, so that short inputs hold whole utterances.
    UtteranceFinder finder{TurnDetection{.threshold = 0.5, .silence = std::chrono::milliseconds{20}}, 200};
    auto events = finder.feed(samples);
    std::ranges::move(finder.finish(), std::back_inserter(events));
    std::int64_t before = 0;
    for (const auto& event : events) {
        if (const auto* utterance = std::get_if<Utterance>(&event)) {
            if (utterance->firstSample < before || utterance->endSample <= utterance->firstSample ||
                utterance->endSample > finder.samplesFed())
                std::abort();
            before = utterance->endSample;
        }
    }
    return 0;
}
