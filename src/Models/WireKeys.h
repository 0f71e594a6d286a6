#pragma once

#include <string_view>

/// The keys of the coaching protocol, one table a message family and one a nested object, each in
/// the protocol's own order. Reading and writing go through the same names.
namespace corvellan::wire {

namespace client {

inline constexpr std::string_view type = "type";
inline constexpr std::string_view company = "company";
inline constexpr std::string_view hubspotId = "hubspot_id";
inline constexpr std::string_view simMode = "sim_mode";
inline constexpr std::string_view scenario = "scenario";
inline constexpr std::string_view discType = "disc_type";
inline constexpr std::string_view calendarEventId = "calendar_event_id";
inline constexpr std::string_view clientVersion = "client_version";
inline constexpr std::string_view audience = "audience";
inline constexpr std::string_view callNotes = "call_notes";
inline constexpr std::string_view goals = "goals";
inline constexpr std::string_view gameMode = "game_mode";
inline constexpr std::string_view source = "source";
inline constexpr std::string_view text = "text";
inline constexpr std::string_view outcome = "outcome";
inline constexpr std::string_view rating = "rating";
inline constexpr std::string_view note = "note";
inline constexpr std::string_view featureRequest = "feature_request";
inline constexpr std::string_view enabled = "enabled";

}  // namespace client

namespace server {

inline constexpr std::string_view type = "type";
inline constexpr std::string_view sessionId = "session_id";
inline constexpr std::string_view openaiEphemeralToken = "openai_ephemeral_token";
inline constexpr std::string_view openaiRealtimeUrl = "openai_realtime_url";
inline constexpr std::string_view openaiEphemeralTokenSystem = "openai_ephemeral_token_system";
inline constexpr std::string_view openaiRealtimeUrlSystem = "openai_realtime_url_system";
inline constexpr std::string_view message = "message";  // Of "coaching" and of "error".
inline constexpr std::string_view coachingType = "coaching_type";
inline constexpr std::string_view urgency = "urgency";
inline constexpr std::string_view productHint = "product_hint";
inline constexpr std::string_view state = "state";
inline constexpr std::string_view companyName = "company_name";  // Of "crm_data" and of "extension_context".
inline constexpr std::string_view summary = "summary";
inline constexpr std::string_view durationSecs = "duration_secs";  // Of "summary" and of "extension_call_ended".
inline constexpr std::string_view turns = "turns";
inline constexpr std::string_view meddic = "meddic";
inline constexpr std::string_view disc = "disc";
inline constexpr std::string_view coachingPoints = "coaching_points";
inline constexpr std::string_view transcript = "transcript";
inline constexpr std::string_view callId = "call_id";
inline constexpr std::string_view expiresAt = "expires_at";
inline constexpr std::string_view delta = "delta";
inline constexpr std::string_view latencyMs = "latency_ms";
inline constexpr std::string_view entityType = "entity_type";
inline constexpr std::string_view entityId = "entity_id";
inline constexpr std::string_view displayName = "display_name";
inline constexpr std::string_view hubspotCompanyId = "hubspot_company_id";
inline constexpr std::string_view callActive = "call_active";

}  // namespace server

namespace snapshot {

inline constexpr std::string_view callStage = "call_stage";
inline constexpr std::string_view meddicScore = "meddic_score";
inline constexpr std::string_view meddic = "meddic";
inline constexpr std::string_view disc = "disc";
inline constexpr std::string_view sentiment = "sentiment";
inline constexpr std::string_view meddicEvidence = "meddic_evidence";
inline constexpr std::string_view callPhase = "call_phase";

}  // namespace snapshot

namespace meddic {

inline constexpr std::string_view metrics = "metrics";
inline constexpr std::string_view economicBuyer = "economic_buyer";
inline constexpr std::string_view decisionCriteria = "decision_criteria";
inline constexpr std::string_view decisionProcess = "decision_process";
inline constexpr std::string_view identifyPain = "identify_pain";
inline constexpr std::string_view champion = "champion";

}  // namespace meddic

namespace disc {

inline constexpr std::string_view type = "type";  // Not "disc_type", which only "start_session" has.
inline constexpr std::string_view confidence = "confidence";
inline constexpr std::string_view signals_ = "signals";

}  // namespace disc

}  // namespace corvellan::wire
