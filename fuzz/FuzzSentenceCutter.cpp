#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Base/Text.h"
#include "Services/Speech/SentenceCutter.h"

using namespace corvellan;

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Takes a sentence off the front, with the white space before it.
void takeOff(QStringView& rest, const QString& sentence) {
    require(!sentence.isEmpty() && text::trimmed(sentence) == sentence);
    const auto at = rest.indexOf(sentence);
    require(at >= 0 && text::trimmed(rest.first(at)).isEmpty());
    rest = rest.sliced(at + sentence.size());
}

}  // namespace

// However a reply is cut into tokens (the first byte of the input says how long they are), no sentence
// is lost, doubled or moved, and the cuts are those of the rule itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const QString reply = QString::fromUtf8(QByteArrayView{data + 1, static_cast<qsizetype>(size - 1)});
    std::uint32_t state = data[0] + 1U;
    SentenceCutter cutter;
    QStringView unspoken = reply;
    for (QStringView tokens = reply; !tokens.isEmpty();) {
        state = state * 1'664'525U + 1'013'904'223U;
        const auto length = std::min<qsizetype>(tokens.size(), 1 + (state >> 24U) % (data[0] + 1U));
        cutter.append(tokens.first(length));
        tokens = tokens.sliced(length);

        const auto boundary = findSentenceBoundary(cutter.text());
        auto sentence = cutter.takeSentence();
        require(boundary || !sentence);
        for (; sentence; sentence = cutter.takeSentence())
            takeOff(unspoken, *sentence);
        require(!findSentenceBoundary(cutter.text()));
    }
    if (const auto rest = cutter.takeRest())
        takeOff(unspoken, *rest);
    require(text::trimmed(unspoken).isEmpty());
    return 0;
}
