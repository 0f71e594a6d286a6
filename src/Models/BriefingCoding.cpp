#include "BriefingFields.h"
#include "LenientJson.h"
#include "RecordCoding.h"

namespace corvellan {

QByteArray ResolvedCompany::encode() const {
    return encodeValue(*this);
}

Decoded<ResolvedCompany> ResolvedCompany::decode(QByteArrayView json) {
    return decodeRecord<ResolvedCompany>(json);
}

QByteArray CalendarMeeting::encode() const {
    return encodeValue(*this);
}

Decoded<CalendarMeeting> CalendarMeeting::decode(QByteArrayView json) {
    return decodeRecord<CalendarMeeting>(json);
}

QByteArray SalesBrief::encode() const {
    return encodeValue(*this);
}

Decoded<SalesBrief> SalesBrief::decode(QByteArrayView json) {
    return decodeRecord<SalesBrief>(json);
}

QByteArray HandoffResponse::encode() const {
    return encodeValue(*this);
}

Decoded<HandoffResponse> HandoffResponse::decode(QByteArrayView json) {
    return decodeRecord<HandoffResponse>(json);
}

QByteArray TimelineResponse::encode() const {
    return encodeValue(*this);
}

Decoded<TimelineResponse> TimelineResponse::decode(QByteArrayView json) {
    return decodeRecord<TimelineResponse>(json);
}

QByteArray ScenarioItem::encode() const {
    return encodeValue(*this);
}

Decoded<ScenarioItem> ScenarioItem::decode(QByteArrayView json) {
    return decodeRecord<ScenarioItem>(json);
}

QByteArray ScenariosResponse::encode() const {
    return encodeValue(*this);
}

Decoded<ScenariosResponse> ScenariosResponse::decode(QByteArrayView json) {
    return decodeRecord<ScenariosResponse>(json);
}

Decoded<std::vector<CalendarMeeting>> decodeEvents(QByteArrayView json) {
    return decodeListUnder<std::vector<CalendarMeeting>>("events", json);
}

Decoded<std::vector<ResolvedCompany>> decodeMatches(QByteArrayView json) {
    return decodeListUnder<std::vector<ResolvedCompany>>("matches", json);
}

}  // namespace corvellan
