#include "ServerCallRecord.h"

#include "Base/Iso8601.h"
#include "Base/Uuid.h"
#include "ProtocolFields.h"
#include "RecordCoding.h"

using namespace Qt::StringLiterals;

namespace corvellan {

// Found by the reader through its own type, which is why they stand in its namespace.
static void readWhole(ValueReader& reader, const boost::json::value& value, WallTime& result, const FieldPath& path) {
    QString text;
    reader.read(value, text, path);
    if (reader.failure())
        return;
    if (const auto time = parseIso8601(text))
        result = *time;
    else
        reader.fail(DecodingError::Kind::dataCorrupted, path, u"Bad date: "_s + text);
}

static void readWhole(ValueReader& reader, const boost::json::value& value, QUuid& result, const FieldPath& path) {
    QString text;
    reader.read(value, text, path);
    if (reader.failure())
        return;
    if (const auto id = parseUuid(text))
        result = *id;
    else
        reader.fail(DecodingError::Kind::dataCorrupted, path, u"Bad id: "_s + text);
}

template <typename Io, FieldsOf<ServerCriterion> T>
void fields(Io& io, T& criterion) {
    io.field("confirmed", criterion.confirmed);
}

template <typename Io, FieldsOf<ServerMeddic> T>
void fields(Io& io, T& meddic) {
    io.field(wire::meddic::metrics, meddic.metrics);
    io.field(wire::meddic::economicBuyer, meddic.economic_buyer);
    io.field(wire::meddic::decisionCriteria, meddic.decision_criteria);
    io.field(wire::meddic::decisionProcess, meddic.decision_process);
    io.field(wire::meddic::identifyPain, meddic.identify_pain);
    io.field(wire::meddic::champion, meddic.champion);
}

template <typename Io, FieldsOf<ServerDisc> T>
void fields(Io& io, T& disc) {
    io.field(wire::disc::type, disc.type);
    io.field(wire::disc::confidence, disc.confidence);
    io.field(wire::disc::signals_, disc.signals_);
}

template <typename Io, FieldsOf<ServerCallRecord> T>
void fields(Io& io, T& call) {
    io.field("id", call.id);
    io.field("session_id", call.session_id);
    io.field("mode", call.mode);
    io.field("company_name", call.company_name);
    io.field("scenario", call.scenario);
    io.field("started_at", call.started_at);
    io.field("ended_at", call.ended_at);
    io.field("duration_sec", call.duration_sec);
    io.field("turns", call.turns);
    io.field("meddic", call.meddic);
    io.field("disc", call.disc);
    io.field("coaching_points", call.coaching_points);
    io.field("calendar_event_id", call.calendar_event_id);
    io.field("outcome", call.outcome);
}

MeddicScore ServerMeddic::toMeddicScore() const {
    const auto isMet = [](const std::optional<ServerCriterion>& criterion) {
        return criterion && criterion->confirmed;
    };
    return {.metrics = isMet(metrics),
            .economicBuyer = isMet(economic_buyer),
            .decisionCriteria = isMet(decision_criteria),
            .decisionProcess = isMet(decision_process),
            .identifyPain = isMet(identify_pain),
            .champion = isMet(champion)};
}

BuyerDisc ServerDisc::toBuyerDisc() const {
    const auto word = [](const std::optional<QString>& text) { return text.value_or(QString{}).toStdString(); };
    return {discType(word(type)).value_or(DiscType::unknown),
            discConfidence(word(confidence)).value_or(DiscConfidence::low), signals_.value_or(QString{})};
}

QString ServerCallRecord::callId() const {
    return id.toString(QUuid::WithoutBraces);
}

SessionRecord ServerCallRecord::toSessionRecord() const {
    auto record = SessionRecord::make(
        {
            .durationSecs = duration_sec,
            .turns = turns,
            .meddic = meddic.toMeddicScore(),
            .disc = disc.toBuyerDisc(),
            .coachingPoints = coaching_points,
            .scenario = scenario,
            .wasTrainMode = mode == u"train",
            .companyName = company_name,
            .calendarEventId = calendar_event_id,
            .callId = callId(),
            // The server does not say.
            .audience = AudienceType::directSale,
        },
        started_at);
    record.outcome = outcome;
    return record;
}

Decoded<std::vector<ServerCallRecord>> decodeServerCalls(QByteArrayView json) {
    return decodeList<std::vector<ServerCallRecord>>(json);
}

}  // namespace corvellan
