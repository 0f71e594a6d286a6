#include "SessionRecord.h"

using namespace Qt::StringLiterals;

namespace corvellan {

QString formattedDuration(std::int64_t seconds) {
    constexpr std::int64_t secondsPerMinute = 60;
    return u"%1m %2s"_s.arg(seconds / secondsPerMinute).arg(seconds % secondsPerMinute);
}

SessionRecord SessionRecord::make(Contents contents, WallTime now) {
    SessionRecord record;
    record.id = QUuid::createUuid();
    record.createdDate = now;
    record.durationSecs = contents.durationSecs;
    record.turns = contents.turns;
    record.meddicData = encode(contents.meddic);
    record.discData = encode(contents.disc);
    record.coachingPoints = std::move(contents.coachingPoints);
    record.transcript = std::move(contents.transcript);
    record.scenario = std::move(contents.scenario);
    record.wasTrainMode = contents.wasTrainMode;
    record.companyName = std::move(contents.companyName);
    record.calendarEventId = std::move(contents.calendarEventId);
    record.callId = std::move(contents.callId);
    record.audienceRaw = tableText(rawValue(contents.audience));
    return record;
}

MeddicScore SessionRecord::meddic() const {
    return decodeMeddicScore(meddicData).value_or(MeddicScore{});
}

BuyerDisc SessionRecord::disc() const {
    return decodeBuyerDisc(discData).value_or(BuyerDisc{});
}

AudienceType SessionRecord::audience() const {
    if (!audienceRaw)
        return AudienceType::directSale;
    return audienceType(audienceRaw->toStdString()).value_or(AudienceType::directSale);
}

}  // namespace corvellan
