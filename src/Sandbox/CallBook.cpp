#include "CallBook.h"

#include <algorithm>
#include <QJsonArray>

#include "Base/Iso8601.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

QString word(std::string_view raw) {
    return tableText(raw);
}

QJsonObject meddicObject(const CallStateSnapshot& state) {
    static constexpr std::array keys{"metrics",          "economic_buyer", "decision_criteria",
                                     "decision_process", "identify_pain",  "champion"};
    static_assert(keys.size() == meddicCriteria);
    QJsonObject object;
    const auto values = state.meddic.values();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        QJsonObject criterion{{u"confirmed"_s, values.at(i)}};
        if (state.meddicEvidence && i < state.meddicEvidence->size() && (*state.meddicEvidence)[i])
            criterion.insert(u"evidence"_s, *(*state.meddicEvidence)[i]);
        object.insert(QString::fromLatin1(keys.at(i)), criterion);
    }
    return object;
}

void insertIfSet(QJsonObject& object, const QString& key, const std::optional<QString>& value) {
    if (value)
        object.insert(key, *value);
}

}  // namespace

CallRecord& CallBook::add(CallRecord call) {
    return m_calls.emplace_back(std::move(call));
}

CallRecord* CallBook::find(const QString& callId) {
    const QString key = callId.toLower();
    const auto found = std::ranges::find(m_calls, key, &CallRecord::callId);
    return found == m_calls.end() ? nullptr : &*found;
}

const CallRecord* CallBook::findSession(const QString& sessionId) const {
    const auto found = std::ranges::find(m_calls, sessionId, &CallRecord::sessionId);
    return found == m_calls.end() ? nullptr : &*found;
}

void CallBook::addFeedback(CallRecord& call, CallRecord::Feedback feedback) {
    if (call.feedback.size() >= mostFeedback)
        call.feedback.erase(call.feedback.begin());
    call.feedback.push_back(std::move(feedback));
    noteChange(call);
}

void CallBook::setOutcome(CallRecord& call, CallOutcome outcome) {
    call.outcome = outcome;
    noteChange(call);
}

void CallBook::finish(CallRecord& call, WallTime at, std::chrono::seconds duration) {
    call.endedAt = at;
    call.durationSecs = static_cast<std::uint64_t>(duration.count());
    noteChange(call);
}

void CallBook::noteChange(const CallRecord& call) const {
    if (call.endedAt)
        onChanged(call);
}

QJsonObject listedCall(const CallRecord& call) {
    QJsonObject object{
        {u"id"_s, call.callId},
        {u"session_id"_s, call.sessionId},
        {u"mode"_s, call.start.simMode ? u"train"_s : u"live"_s},
        {u"started_at"_s, iso8601(call.startedAt)},
        {u"ended_at"_s, iso8601(call.endedAt.value_or(call.startedAt))},
        {u"duration_sec"_s, static_cast<qint64>(call.durationSecs)},
        {u"turns"_s, call.turns},
        {u"meddic"_s, meddicObject(call.state)},
        {u"disc"_s, QJsonObject{{u"type"_s, word(rawValue(call.state.disc.discType))},
                                {u"confidence"_s, word(rawValue(call.state.disc.confidence))},
                                {u"signals"_s, call.state.disc.signals_}}},
        {u"coaching_points"_s, QJsonArray::fromStringList(call.coachingPoints)},
    };
    insertIfSet(object, u"company_name"_s, call.start.company);
    insertIfSet(object, u"scenario"_s, call.start.scenario);
    insertIfSet(object, u"calendar_event_id"_s, call.start.calendarEventId);
    if (call.outcome)
        object.insert(u"outcome"_s, word(rawValue(*call.outcome)));
    return object;
}

QJsonObject wholeCall(const CallRecord& call) {
    QJsonObject object = listedCall(call);
    object.insert(u"transcript"_s, QJsonArray::fromStringList(call.transcript));
    object.insert(u"stage"_s, word(rawValue(call.state.callStage)));
    object.insert(u"sentiment"_s, word(rawValue(call.state.sentiment)));
    object.insert(u"has_summary"_s, call.hasSummary);
    object.insert(u"is_running"_s, !call.endedAt.has_value());
    object.insert(u"shares_screen"_s, call.sharesScreen);
    object.insert(u"audience"_s, word(rawValue(call.start.audience)));
    insertIfSet(object, u"call_notes"_s, call.start.callNotes);
    if (call.start.goals) {
        QJsonArray goals;
        for (const auto goal : *call.start.goals)
            goals.append(word(rawValue(goal)));
        object.insert(u"goals"_s, goals);
    }
    QJsonArray feedback;
    for (const auto& given : call.feedback) {
        QJsonObject entry{{u"rating"_s, given.rating}};
        insertIfSet(entry, u"note"_s, given.note);
        insertIfSet(entry, u"feature_request"_s, given.featureRequest);
        feedback.append(entry);
    }
    object.insert(u"feedback"_s, feedback);
    return object;
}

}  // namespace corvellan::sandbox
