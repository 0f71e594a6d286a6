#include "CoachConnection.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QUuid>
#include <QWebSocket>

#include "Base/Clock.h"
#include "Base/Text.h"
#include "EventLog.h"
#include "Later.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 largestFrame = 16 * 1024 * 1024;
constexpr std::chrono::minutes tokenLife{30};

QString newUuid() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

/// Whom to practise with: the one that was asked for, the first without a wish. Null when there is none of that key.
const BuyerScenario* scenarioOf(const StartSessionPayload& start, const BuyerBook& buyers) {
    return start.scenario ? buyers.find(*start.scenario) : &buyers.scenarios().front();
}

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

}  // namespace

CoachConnection::CoachConnection(std::unique_ptr<QWebSocket> socket, int number, const CoachContext& context,
                                 QObject* parent)
    : QObject(parent),
      m_socket(std::move(socket)),
      m_number(number),
      m_context(context) {
    m_socket->setMaxAllowedIncomingFrameSize(largestFrame);
    m_socket->setMaxAllowedIncomingMessageSize(largestFrame);
    connect(m_socket.get(), &QWebSocket::textMessageReceived, this,
            [this](const QString& text) { take(text.toUtf8()); });
    connect(m_socket.get(), &QWebSocket::binaryMessageReceived, this,
            [this] { refuse(u"messages are text frames"_s); });
    connect(m_socket.get(), &QWebSocket::disconnected, this, [this] {
        note(u"closed (%1)"_s.arg(static_cast<int>(m_socket->closeCode())));
        lose();
        emit closed();
    });
    note(u"connected"_s);
}

CoachConnection::~CoachConnection() {
    m_socket->disconnect(this);
    // The sandbox ends within the call.
    lose();
}

void CoachConnection::take(const QByteArray& frame) {
    const auto message = ClientMsg::decode(frame);
    if (!message) {
        refuse(message.error().errorDescription());
        return;
    }
    const bool isWaiting = m_state == State::waiting;
    const auto needsSession = [&](const QString& type) {
        if (isWaiting)
            refuse(type + u" before start_session"_s);
        return !isWaiting;
    };
    std::visit(Overloaded{
                   [&](const ClientMsg::StartSession& payload) { start(payload); },
                   [&](const ClientMsg::Transcript& transcript) {
                       if (needsSession(u"transcript"_s))
                           hear(transcript);
                   },
                   [&](const ClientMsg::EndSession&) {
                       if (needsSession(u"end_session"_s))
                           end();
                   },
                   [&](const ClientMsg::SetOutcome& message) {
                       if (!needsSession(u"set_outcome"_s))
                           return;
                       m_context.calls.setOutcome(*m_call, message.outcome);
                       note(u"outcome %1"_s.arg(tableText(rawValue(message.outcome))));
                   },
                   [&](const ClientMsg::SubmitFeedback& message) {
                       if (!needsSession(u"submit_feedback"_s))
                           return;
                       m_context.calls.addFeedback(
                           *m_call,
                           {.rating = message.rating, .note = message.note, .featureRequest = message.featureRequest});
                       note(u"feedback %1"_s.arg(message.rating));
                   },
                   [&](const ClientMsg::RefreshToken&) {
                       if (needsSession(u"refresh_token"_s))
                           refreshToken();
                   },
                   [&](const ClientMsg::Ping&) { send(ServerMsg{ServerMsg::Pong{}}); },
                   [&](const ClientMsg::SetScreenShare& message) {
                       if (!needsSession(u"set_screen_share"_s))
                           return;
                       m_call->sharesScreen = message.enabled;
                       note(message.enabled ? u"screen sharing on"_s : u"screen sharing off"_s);
                   },
               },
               message->value);
}

void CoachConnection::start(const StartSessionPayload& payload) {
    if (m_state != State::waiting) {
        refuse(u"the session has started already"_s);
        return;
    }
    note(u"start_session%1%2, %3"_s.arg(payload.company ? u" with "_s + *payload.company : QString{},
                                        payload.simMode ? u" for training"_s : QString{},
                                        tableText(rawValue(payload.audience))));
    const Faults& faults = m_context.settings.faults;
    if (faults.errorBeforeStart) {
        refuse(u"this session is refused, as --fault error-before-start asks"_s);
        return;
    }
    const auto* const scenario = scenarioOf(payload, m_context.buyers);
    if (payload.simMode && !scenario) {
        refuse(u"there is no scenario \"%1\""_s.arg(*payload.scenario));
        return;
    }
    m_state = State::running;
    m_startedAt = m_context.clock.now();
    m_coach.emplace(payload);
    m_call = &m_context.calls.add({.callId = newUuid(),
                                   .sessionId = newUuid(),
                                   .start = payload,
                                   .startedAt = m_context.clock.wallNow(),
                                   .state = m_coach->state()});

    SessionStartedPayload started{.sessionId = m_call->sessionId};
    if (!faults.noToken) {
        const auto token = [&](AudioSourceTag side) {
            return m_context.tokens.issue({.sessionId = m_call->sessionId, .side = side});
        };
        started.openaiEphemeralToken = token(AudioSourceTag::mic);
        started.openaiRealtimeUrl = realtimeUrl();
        // In training the other party speaks through the program itself.
        if (!payload.simMode) {
            started.openaiEphemeralTokenSystem = token(AudioSourceTag::system);
            started.openaiRealtimeUrlSystem = realtimeUrl();
        }
    }
    send(ServerMsg{started});
    if (payload.company)
        send(ServerMsg{ServerMsg::CrmData{.companyName = *payload.company, .summary = companyBrief(*payload.company)}});
    if (payload.simMode)
        train(*scenario);
}

void CoachConnection::train(const BuyerScenario& scenario) {
    const StartSessionPayload& start = m_call->start;
    m_training = std::make_unique<Training>(
        Buyer{m_context.buyers, scenario, start.discType,
              m_context.settings.buyerSeed.value_or(QRandomGenerator::system()->generate())},
        start.gameMode, m_context.clock, [this](const ServerMsg& message) { send(message); },
        [this](const QString& sentence) { note(u"says: "_s + sentence); },
        [this](const BuyerReply& reply) { hearBuyer(reply); });
    note(u"%1 as a buyer, %2"_s.arg(scenario.person, tableText(rawValue(m_training->buyerType()))));
    m_training->begin();
}

void CoachConnection::hear(const ClientMsg::Transcript& transcript) {
    if (m_state == State::ended) {
        note(u"a transcript after the end"_s);
        return;
    }
    const bool isTurn = m_training && transcript.source == AudioSourceTag::mic;
    if (isTurn)
        m_training->interrupt();
    judge(transcript.source, transcript.text);
    if (isTurn)
        m_training->reply(transcript.text);
}

void CoachConnection::hearBuyer(const BuyerReply& reply) {
    if (m_state == State::running)
        judge(AudioSourceTag::system, reply.text, reply.given);
}

void CoachConnection::judge(AudioSourceTag side, const QString& text, const std::optional<GivenAway>& given) {
    const bool isMic = side == AudioSourceTag::mic;
    note(u"%1: %2"_s.arg(tableText(rawValue(side)), text));
    m_call->transcript.append((isMic ? u"[Mic] "_s : u"[Audio] "_s) + text);
    auto payload = m_coach->hear(side, text, given);
    m_call->state = m_coach->state();
    m_call->turns = m_coach->turns();
    if (m_training)
        payload = m_training->judged(side, text, std::move(payload), m_call->state);
    if (payload)
        tip(*payload);
}

void CoachConnection::tip(const CoachingPayload& payload) {
    const ServerMsg message{payload};
    if (m_context.settings.faults.unknownEnum) {
        if (const auto frame = message.encode())
            sendFrame(withUnknownType(*frame));
    }
    m_call->transcript.append(u"[Coach] "_s + payload.message);
    note(u"tip (%1, %2): %3"_s.arg(tableText(rawValue(payload.coachingType)),
                                   tableText(rawValue(payload.state.callStage)), payload.message));
    send(message);
}

void CoachConnection::end() {
    if (m_state == State::ended) {
        note(u"end_session once more"_s);
        return;
    }
    if (m_training)
        m_training->interrupt();
    m_state = State::ended;
    note(u"end_session"_s);
    m_call->hasSummary = true;
    finish();
    if (const auto delay = m_context.settings.faults.slowSummary)
        later(m_context.clock, *delay, this, [this] { summarise(); });
    else
        summarise();
}

void CoachConnection::finish() {
    m_call->coachingPoints = m_coach->coachingPoints();
    if (m_training) {
        m_training->silence();
        m_call->coachingPoints += m_training->keyPoints();
    }
    m_context.tokens.revoke(m_call->sessionId);
    m_context.calls.finish(*m_call, m_context.clock.wallNow(),
                           std::chrono::floor<std::chrono::seconds>(m_context.clock.now() - m_startedAt));
}

void CoachConnection::summarise() {
    note(u"summary: %1 s, %2 turns, %3 of 6 criteria"_s.arg(m_call->durationSecs)
             .arg(m_call->turns)
             .arg(m_call->state.meddic.score()));
    send(ServerMsg{SummaryPayload{.durationSecs = m_call->durationSecs,
                                  .turns = m_call->turns,
                                  .meddic = m_call->state.meddic,
                                  .disc = m_call->state.disc,
                                  .coachingPoints = m_call->coachingPoints,
                                  .transcript = m_call->transcript,
                                  .callId = m_call->callId}});
    // The client does not hang up after a summary.
    later(m_context.clock, m_context.settings.closeAfter, this, [this] { close(1000, {}); });
}

void CoachConnection::refreshToken() {
    const auto expires = std::chrono::floor<std::chrono::seconds>(m_context.clock.wallNow() + tokenLife);
    send(ServerMsg{ServerMsg::TokenRefreshed{
        .openaiEphemeralToken = m_context.tokens.issue({.sessionId = m_call->sessionId, .side = AudioSourceTag::mic}),
        .expiresAt = static_cast<std::uint64_t>(expires.time_since_epoch().count())}});
}

void CoachConnection::lose() {
    if (m_state != State::running)
        return;
    m_state = State::ended;
    finish();
    note(u"the connection was lost within a session"_s);
}

QString CoachConnection::realtimeUrl() const {
    return u"ws://%1:%2/v1/realtime?intent=transcription"_s.arg(m_socket->requestUrl().host())
        .arg(m_context.settings.providerPort);
}

void CoachConnection::refuse(const QString& why) {
    note(u"refused a message: %1"_s.arg(why));
    send(ServerMsg{ServerMsg::Failure{.message = why}});
}

void CoachConnection::send(const ServerMsg& message) {
    if (const auto frame = message.encode())
        sendFrame(*frame);
    else
        note(u"cannot encode a message: %1"_s.arg(frame.error().errorDescription()));
}

void CoachConnection::sendFrame(const QByteArray& frame) {
    const Faults& faults = m_context.settings.faults;
    if (faults.silence)
        return;
    const QString reason = u"as --fault close-at-step asks"_s;
    if (faults.closeAt && faults.closeAt->step == 0) {
        close(faults.closeAt->code, reason);
        return;
    }
    m_socket->sendTextMessage(QString::fromUtf8(frame));
    if (faults.closeAt && ++m_sent == faults.closeAt->step)
        close(faults.closeAt->code, reason);
}

void CoachConnection::close(int code, const QString& reason) {
    m_socket->close(static_cast<QWebSocketProtocol::CloseCode>(code), reason);
}

void CoachConnection::note(const QString& what) const {
    m_context.log.event(u"coach"_s, u"#%1 %2"_s.arg(m_number).arg(text::prefix(what, 300)));
}

QByteArray withUnknownType(const QByteArray& coachingFrame) {
    auto object = QJsonDocument::fromJson(coachingFrame).object();
    object.insert(u"coaching_type"_s, u"telepathy"_s);
    object.insert(u"message"_s, u"No client can show this."_s);
    return QJsonDocument{object}.toJson(QJsonDocument::Compact);
}

}  // namespace corvellan::sandbox
