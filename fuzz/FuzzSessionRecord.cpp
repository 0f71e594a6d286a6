#include <cstddef>
#include <cstdint>

#include "Models/SessionRecord.h"
#include "RoundTrip.h"

using namespace corvellan;

namespace {

template <typename T>
void check(const Decoded<T>& decoded, Decoded<T> (*decode)(QByteArrayView)) {
    if (decoded)
        fuzz::expectRoundTrip(*decoded, [](const T& value) { return encode(value); }, decode);
    else
        fuzz::expectSentence(decoded.error());
}

}  // namespace

/// Everything that a record's columns are decoded from.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes{data, static_cast<qsizetype>(size)};
    check(decodeMeddicScore(bytes), decodeMeddicScore);
    check(decodeBuyerDisc(bytes), decodeBuyerDisc);
    check(decodeStrings(bytes), decodeStrings);
    check(decodeOptionalStrings(bytes), decodeOptionalStrings);

    SessionRecord record;
    record.meddicData = bytes.toByteArray();
    record.discData = record.meddicData;
    record.audienceRaw = QString::fromUtf8(bytes);
    if (record.meddic() != decodeMeddicScore(bytes).value_or(MeddicScore{}) ||
        record.disc() != decodeBuyerDisc(bytes).value_or(BuyerDisc{}))
        fuzz::fail("the record reads its bytes as something else", record.meddicData);
    if (record.audience() != AudienceType::directSale &&
        rawValue(record.audience()) != record.audienceRaw->toStdString())
        fuzz::fail("an audience that its word does not name", record.meddicData);
    return 0;
}
