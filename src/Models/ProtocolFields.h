#pragma once

#include <concepts>
#include <string_view>
#include <type_traits>

#include "Protocol.h"
#include "WireKeys.h"

/// What every message and object holds, told once for reading and for writing: `fields(io, value)`
/// names each field by its key, in the protocol's order. `io` offers
/// - `field`: always written; required on reading, or optional when it is a `std::optional`;
/// - `defaulted`: always written; keeps its value when reading does not find it;
/// - `writtenOnly`: never read.
namespace corvellan {

/// `Record`, or `Record` const for writing.
template <typename T, typename Record>
concept FieldsOf = std::same_as<std::remove_const_t<T>, Record>;

template <typename Io, FieldsOf<MeddicScore> T>
void fields(Io& io, T& score) {
    io.field(wire::meddic::metrics, score.metrics);
    io.field(wire::meddic::economicBuyer, score.economicBuyer);
    io.field(wire::meddic::decisionCriteria, score.decisionCriteria);
    io.field(wire::meddic::decisionProcess, score.decisionProcess);
    io.field(wire::meddic::identifyPain, score.identifyPain);
    io.field(wire::meddic::champion, score.champion);
}

template <typename Io, FieldsOf<BuyerDisc> T>
void fields(Io& io, T& disc) {
    io.field(wire::disc::type, disc.discType);
    io.field(wire::disc::confidence, disc.confidence);
    io.field(wire::disc::signals_, disc.signals_);
}

template <typename Io, FieldsOf<CallStateSnapshot> T>
void fields(Io& io, T& state) {
    io.field(wire::snapshot::callStage, state.callStage);
    io.field(wire::snapshot::meddicScore, state.meddicScore);
    io.field(wire::snapshot::meddic, state.meddic);
    io.field(wire::snapshot::disc, state.disc);
    io.field(wire::snapshot::sentiment, state.sentiment);
    io.field(wire::snapshot::meddicEvidence, state.meddicEvidence);
    io.field(wire::snapshot::callPhase, state.callPhase);
}

// MARK: - To the server

template <typename Io, FieldsOf<StartSessionPayload> T>
void fields(Io& io, T& start) {
    io.field(wire::client::company, start.company);
    io.field(wire::client::hubspotId, start.hubspotId);
    io.defaulted(wire::client::simMode, start.simMode);
    io.field(wire::client::scenario, start.scenario);
    io.field(wire::client::discType, start.discType);
    io.field(wire::client::calendarEventId, start.calendarEventId);
    io.writtenOnly(wire::client::clientVersion, start.clientVersion);
    io.defaulted(wire::client::audience, start.audience);
    io.field(wire::client::callNotes, start.callNotes);
    io.field(wire::client::goals, start.goals);
    io.defaulted(wire::client::gameMode, start.gameMode);
}

template <typename Io, FieldsOf<ClientMsg::Transcript> T>
void fields(Io& io, T& transcript) {
    io.field(wire::client::source, transcript.source);
    io.field(wire::client::text, transcript.text);
}

template <typename Io, FieldsOf<ClientMsg::SetOutcome> T>
void fields(Io& io, T& message) {
    io.field(wire::client::outcome, message.outcome);
}

template <typename Io, FieldsOf<ClientMsg::SubmitFeedback> T>
void fields(Io& io, T& feedback) {
    io.field(wire::client::rating, feedback.rating);
    io.field(wire::client::note, feedback.note);
    io.field(wire::client::featureRequest, feedback.featureRequest);
}

template <typename Io, FieldsOf<ClientMsg::SetScreenShare> T>
void fields(Io& io, T& message) {
    io.field(wire::client::enabled, message.enabled);
}

template <typename Io, FieldsOf<ClientMsg::EndSession> T>
void fields(Io&, T&) {}
template <typename Io, FieldsOf<ClientMsg::RefreshToken> T>
void fields(Io&, T&) {}
template <typename Io, FieldsOf<ClientMsg::Ping> T>
void fields(Io&, T&) {}

// MARK: - From the server

template <typename Io, FieldsOf<SessionStartedPayload> T>
void fields(Io& io, T& started) {
    io.field(wire::server::sessionId, started.sessionId);
    io.field(wire::server::openaiEphemeralToken, started.openaiEphemeralToken);
    io.field(wire::server::openaiRealtimeUrl, started.openaiRealtimeUrl);
    io.field(wire::server::openaiEphemeralTokenSystem, started.openaiEphemeralTokenSystem);
    io.field(wire::server::openaiRealtimeUrlSystem, started.openaiRealtimeUrlSystem);
}

template <typename Io, FieldsOf<CoachingPayload> T>
void fields(Io& io, T& coaching) {
    io.field(wire::server::message, coaching.message);
    io.field(wire::server::coachingType, coaching.coachingType);
    io.field(wire::server::urgency, coaching.urgency);
    io.field(wire::server::productHint, coaching.productHint);
    io.field(wire::server::state, coaching.state);
}

template <typename Io, FieldsOf<ServerMsg::CrmData> T>
void fields(Io& io, T& data) {
    io.field(wire::server::companyName, data.companyName);
    io.field(wire::server::summary, data.summary);
}

template <typename Io, FieldsOf<SummaryPayload> T>
void fields(Io& io, T& summary) {
    io.field(wire::server::durationSecs, summary.durationSecs);
    io.field(wire::server::turns, summary.turns);
    io.field(wire::server::meddic, summary.meddic);
    io.field(wire::server::disc, summary.disc);
    io.field(wire::server::coachingPoints, summary.coachingPoints);
    io.field(wire::server::transcript, summary.transcript);
    io.field(wire::server::callId, summary.callId);
}

template <typename Io, FieldsOf<ServerMsg::TokenRefreshed> T>
void fields(Io& io, T& refreshed) {
    io.field(wire::server::openaiEphemeralToken, refreshed.openaiEphemeralToken);
    io.field(wire::server::expiresAt, refreshed.expiresAt);
}

template <typename Io, FieldsOf<ServerMsg::CounterpartToken> T>
void fields(Io& io, T& token) {
    io.field(wire::server::delta, token.delta);
}

template <typename Io, FieldsOf<ServerMsg::CounterpartDone> T>
void fields(Io& io, T& done) {
    io.field(wire::server::latencyMs, done.latencyMs);
}

template <typename Io, FieldsOf<ServerMsg::Failure> T>
void fields(Io& io, T& failure) {
    io.field(wire::server::message, failure.message);
}

template <typename Io, FieldsOf<ServerMsg::Pong> T>
void fields(Io&, T&) {}

template <typename Io, FieldsOf<ExtensionContextPayload> T>
void fields(Io& io, T& context) {
    io.field(wire::server::entityType, context.entityType);
    io.field(wire::server::entityId, context.entityId);
    io.field(wire::server::displayName, context.displayName);
    io.field(wire::server::companyName, context.companyName);
    io.field(wire::server::hubspotCompanyId, context.hubspotCompanyId);
    io.field(wire::server::callActive, context.callActive);
}

template <typename Io, FieldsOf<ServerMsg::ExtensionCallEnded> T>
void fields(Io& io, T& ended) {
    io.field(wire::server::durationSecs, ended.durationSecs);
}

// MARK: - Message types

/// The word under "type" that names a message; one specialisation a message.
template <typename Message>
inline constexpr std::string_view typeWord;

template <>
inline constexpr std::string_view typeWord<ClientMsg::StartSession> = "start_session";
template <>
inline constexpr std::string_view typeWord<ClientMsg::Transcript> = "transcript";
template <>
inline constexpr std::string_view typeWord<ClientMsg::EndSession> = "end_session";
template <>
inline constexpr std::string_view typeWord<ClientMsg::SetOutcome> = "set_outcome";
template <>
inline constexpr std::string_view typeWord<ClientMsg::SubmitFeedback> = "submit_feedback";
template <>
inline constexpr std::string_view typeWord<ClientMsg::RefreshToken> = "refresh_token";
template <>
inline constexpr std::string_view typeWord<ClientMsg::Ping> = "ping";
template <>
inline constexpr std::string_view typeWord<ClientMsg::SetScreenShare> = "set_screen_share";

template <>
inline constexpr std::string_view typeWord<ServerMsg::SessionStarted> = "session_started";
template <>
inline constexpr std::string_view typeWord<ServerMsg::Coaching> = "coaching";
template <>
inline constexpr std::string_view typeWord<ServerMsg::CrmData> = "crm_data";
template <>
inline constexpr std::string_view typeWord<ServerMsg::Summary> = "summary";
template <>
inline constexpr std::string_view typeWord<ServerMsg::TokenRefreshed> = "token_refreshed";
template <>
inline constexpr std::string_view typeWord<ServerMsg::CounterpartToken> = "counterpart_token";
template <>
inline constexpr std::string_view typeWord<ServerMsg::CounterpartDone> = "counterpart_done";
template <>
inline constexpr std::string_view typeWord<ServerMsg::Failure> = "error";
template <>
inline constexpr std::string_view typeWord<ServerMsg::Pong> = "pong";
template <>
inline constexpr std::string_view typeWord<ServerMsg::ExtensionContext> = "extension_context";
template <>
inline constexpr std::string_view typeWord<ServerMsg::ExtensionCallEnded> = "extension_call_ended";

}  // namespace corvellan
