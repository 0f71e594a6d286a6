#include "StateFiles.h"

#include <limits>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "Base/Iso8601.h"
#include "Base/Uuid.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Bad = std::unexpected<QString>;

constexpr qsizetype keyBytes = 32;

QByteArray json(const QJsonObject& object) {
    return QJsonDocument{object}.toJson(QJsonDocument::Indented);
}

std::expected<QJsonObject, QString> objectIn(const QByteArray& bytes) {
    if (bytes.size() > longestStateFile)
        return Bad{u"it is longer than %1 bytes"_s.arg(longestStateFile)};
    QJsonParseError problem;
    const auto document = QJsonDocument::fromJson(bytes, &problem);
    if (problem.error != QJsonParseError::NoError)
        return Bad{u"at byte %1: %2"_s.arg(problem.offset).arg(problem.errorString())};
    if (!document.isObject())
        return Bad{u"expected an object"_s};
    return document.object();
}

/// Reads values; after the first that is not as it should be, `problem` tells of it.
class Values {
public:
    explicit Values(QJsonObject object) : m_object(std::move(object)) {}

    QString text(const QString& key) {
        if (!m_object.value(key).isString())
            fail(key, u"a text"_s);
        return m_object.value(key).toString();
    }
    std::optional<QString> optionalText(const QString& key) {
        return m_object.contains(key) ? std::optional{text(key)} : std::nullopt;
    }
    bool flag(const QString& key) {
        if (!m_object.value(key).isBool())
            fail(key, u"true or false"_s);
        return m_object.value(key).toBool();
    }
    qint64 number(const QString& key, qint64 lowest, qint64 highest) {
        // Twice, since a fraction gives whatever stands for none.
        const auto value = m_object.value(key);
        const qint64 found = value.toInteger(0);
        if (found != value.toInteger(1) || found < lowest || found > highest)
            fail(key, u"a whole number from %1 to %2"_s.arg(lowest).arg(highest));
        return found;
    }
    WallTime time(const QString& key) {
        const auto found = parseIso8601(text(key));
        if (!found)
            fail(key, u"a date with time and zone"_s);
        return found.value_or(WallTime{});
    }
    QJsonObject object(const QString& key) {
        if (!m_object.value(key).isObject())
            fail(key, u"an object"_s);
        return m_object.value(key).toObject();
    }
    QJsonArray array(const QString& key) {
        if (!m_object.value(key).isArray())
            fail(key, u"a list"_s);
        return m_object.value(key).toArray();
    }
    QStringList texts(const QString& key) {
        QStringList found;
        for (const auto& value : array(key)) {
            if (!value.isString())
                fail(key, u"texts"_s);
            found.append(value.toString());
        }
        return found;
    }
    [[nodiscard]] bool has(const QString& key) const { return m_object.contains(key); }

    void fail(const QString& key, const QString& expected) {
        if (!m_problem)
            m_problem = u"%1: expected %2"_s.arg(key, expected);
    }
    void fail(const QString& key, const Error& error) {
        if (!m_problem)
            m_problem = u"%1: %2"_s.arg(key, error.errorDescription());
    }
    [[nodiscard]] const std::optional<QString>& problem() const { return m_problem; }

private:
    QJsonObject m_object;
    std::optional<QString> m_problem;
};

// The messages that carry a start and a state are what they are kept as.

QJsonObject startObject(const StartSessionPayload& start) {
    const auto message = ClientMsg{start}.encode();
    return QJsonDocument::fromJson(message.value_or(QByteArray{})).object();
}

StartSessionPayload startIn(Values& values) {
    const auto message = ClientMsg::decode(json(values.object(u"start"_s)));
    if (!message) {
        values.fail(u"start"_s, message.error());
        return {};
    }
    const auto* const start = std::get_if<ClientMsg::StartSession>(&message->value);
    if (!start)
        values.fail(u"start"_s, u"a start_session"_s);
    return start ? *start : StartSessionPayload{};
}

QJsonObject tipWith(const QJsonObject& state) {
    return {{u"type"_s, u"coaching"_s}, {u"message"_s, u""_s}, {u"coaching_type"_s, u"whisper"_s}, {u"state"_s, state}};
}

QJsonObject stateObject(const CallStateSnapshot& state) {
    const auto message = ServerMsg{CoachingPayload{.state = state}}.encode();
    return QJsonDocument::fromJson(message.value_or(QByteArray{})).object().value(u"state"_s).toObject();
}

CallStateSnapshot stateIn(Values& values) {
    const auto message = ServerMsg::decode(json(tipWith(values.object(u"state"_s))));
    if (!message) {
        values.fail(u"state"_s, message.error());
        return {};
    }
    return std::get<ServerMsg::Coaching>(message->value).state;
}

QJsonArray feedbackArray(const CallRecord& call) {
    QJsonArray array;
    for (const auto& given : call.feedback) {
        QJsonObject entry{{u"rating"_s, given.rating}};
        if (given.note)
            entry.insert(u"note"_s, *given.note);
        if (given.featureRequest)
            entry.insert(u"feature_request"_s, *given.featureRequest);
        array.append(entry);
    }
    return array;
}

std::vector<CallRecord::Feedback> feedbackIn(Values& values) {
    constexpr qint64 lowest = std::numeric_limits<std::int16_t>::min();
    constexpr qint64 highest = std::numeric_limits<std::int16_t>::max();
    std::vector<CallRecord::Feedback> feedback;
    for (const auto& value : values.array(u"feedback"_s)) {
        Values entry{value.toObject()};
        feedback.push_back({.rating = static_cast<int>(entry.number(u"rating"_s, lowest, highest)),
                            .note = entry.optionalText(u"note"_s),
                            .featureRequest = entry.optionalText(u"feature_request"_s)});
        if (entry.problem())
            values.fail(u"feedback"_s, u"ratings with notes"_s);
    }
    if (feedback.size() > CallBook::mostFeedback)
        values.fail(u"feedback"_s, u"fewer of them"_s);
    return feedback;
}

}  // namespace

// MARK: - Accounts

QByteArray encodeAccounts(const AccountBook::State& state) {
    QJsonObject grants;
    for (auto grant = state.grants.cbegin(); grant != state.grants.cend(); ++grant)
        grants.insert(grant.key(), QJsonObject{{u"user"_s, grant->user},
                                               {u"client_id"_s, grant->clientId},
                                               {u"scope"_s, grant->scope},
                                               {u"refresh_token"_s, grant->refreshToken}});
    return json({{u"signing_key"_s, QString::fromLatin1(state.signingKey.toBase64())}, {u"grants"_s, grants}});
}

std::expected<AccountBook::State, QString> decodeAccounts(const QByteArray& bytes) {
    auto object = objectIn(bytes);
    if (!object)
        return Bad{object.error()};
    Values values{*object};
    AccountBook::State state;
    const auto key = QByteArray::fromBase64Encoding(values.text(u"signing_key"_s).toLatin1(),
                                                    QByteArray::AbortOnBase64DecodingErrors);
    if (!key || key.decoded.size() != keyBytes)
        values.fail(u"signing_key"_s, u"32 bytes in base64"_s);
    state.signingKey = key.decoded;
    const auto grants = values.object(u"grants"_s);
    for (auto grant = grants.begin(); grant != grants.end(); ++grant) {
        Values entry{grant.value().toObject()};
        state.grants.insert(grant.key(), {.user = entry.text(u"user"_s),
                                          .clientId = entry.text(u"client_id"_s),
                                          .scope = entry.text(u"scope"_s),
                                          .refreshToken = entry.text(u"refresh_token"_s)});
        if (entry.problem())
            values.fail(u"grants"_s, u"sign-ins with user, client_id, scope and refresh_token"_s);
    }
    if (values.problem())
        return Bad{*values.problem()};
    return state;
}

// MARK: - Calls

QByteArray encodeCall(const CallRecord& call) {
    QJsonObject object{
        {u"call_id"_s, call.callId},
        {u"session_id"_s, call.sessionId},
        {u"start"_s, startObject(call.start)},
        {u"started_at"_s, iso8601(call.startedAt)},
        {u"ended_at"_s, iso8601(call.endedAt.value_or(call.startedAt))},
        {u"duration_sec"_s, static_cast<qint64>(call.durationSecs)},
        {u"turns"_s, call.turns},
        {u"state"_s, stateObject(call.state)},
        {u"coaching_points"_s, QJsonArray::fromStringList(call.coachingPoints)},
        {u"transcript"_s, QJsonArray::fromStringList(call.transcript)},
        {u"has_summary"_s, call.hasSummary},
        {u"shares_screen"_s, call.sharesScreen},
        {u"feedback"_s, feedbackArray(call)},
    };
    if (call.outcome)
        object.insert(u"outcome"_s, tableText(rawValue(*call.outcome)));
    return json(object);
}

std::expected<CallRecord, QString> decodeCall(const QByteArray& bytes) {
    auto object = objectIn(bytes);
    if (!object)
        return Bad{object.error()};
    Values values{*object};
    constexpr qint64 longestSeconds = qint64{100} * 366 * 24 * 3600;
    CallRecord call{
        .callId = values.text(u"call_id"_s),
        .sessionId = values.text(u"session_id"_s),
        .start = startIn(values),
        .startedAt = values.time(u"started_at"_s),
        .endedAt = values.time(u"ended_at"_s),
        .durationSecs = static_cast<std::uint64_t>(values.number(u"duration_sec"_s, 0, longestSeconds)),
        .turns = static_cast<int>(values.number(u"turns"_s, 0, std::numeric_limits<int>::max())),
        .state = stateIn(values),
        .coachingPoints = values.texts(u"coaching_points"_s),
        .transcript = values.texts(u"transcript"_s),
        .hasSummary = values.flag(u"has_summary"_s),
        .sharesScreen = values.flag(u"shares_screen"_s),
        .outcome = {},
        .feedback = feedbackIn(values),
    };
    if (!parseUuid(call.callId) || call.callId != call.callId.toLower())
        values.fail(u"call_id"_s, u"a UUID in lower case"_s);
    if (const auto word = values.optionalText(u"outcome"_s)) {
        call.outcome = callOutcome(word->toStdString());
        if (!call.outcome)
            values.fail(u"outcome"_s, u"an outcome"_s);
    }
    if (values.problem())
        return Bad{*values.problem()};
    return call;
}

// MARK: - The browser extension

QByteArray encodeSensor(const SensorBook::State& state) {
    QJsonObject object{{u"sensor_connected"_s, state.isConnected}};
    if (state.context) {
        const auto message = ServerMsg{*state.context}.encode();
        object.insert(u"context"_s, QJsonDocument::fromJson(message.value_or(QByteArray{})).object());
    }
    if (state.callStartedAt)
        object.insert(u"call_started_at"_s, iso8601(*state.callStartedAt));
    return json(object);
}

std::expected<SensorBook::State, QString> decodeSensor(const QByteArray& bytes) {
    auto object = objectIn(bytes);
    if (!object)
        return Bad{object.error()};
    Values values{*object};
    SensorBook::State state{.isConnected = values.flag(u"sensor_connected"_s), .context = {}, .callStartedAt = {}};
    if (values.has(u"context"_s)) {
        const auto message = ServerMsg::decode(json(values.object(u"context"_s)));
        if (!message)
            values.fail(u"context"_s, message.error());
        else if (const auto* const context = std::get_if<ServerMsg::ExtensionContext>(&message->value))
            state.context = *context;
        else
            values.fail(u"context"_s, u"an extension_context"_s);
    }
    if (values.has(u"call_started_at"_s))
        state.callStartedAt = values.time(u"call_started_at"_s);
    if (values.problem())
        return Bad{*values.problem()};
    return state;
}

}  // namespace corvellan::sandbox
