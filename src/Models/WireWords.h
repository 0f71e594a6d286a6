#pragma once

#include <optional>
#include <string_view>

#include "Types.h"

/// The tables of the enumerations by type, for code that reads and writes any of them.
namespace corvellan {

template <typename Enumeration>
inline constexpr const std::nullptr_t* wireRows = nullptr;

template <>
inline constexpr const auto* wireRows<CallStage> = &callStageRows;
template <>
inline constexpr const auto* wireRows<CoachingType> = &coachingTypeRows;
template <>
inline constexpr const auto* wireRows<CoachingUrgency> = &coachingUrgencyRows;
template <>
inline constexpr const auto* wireRows<CustomerSentiment> = &customerSentimentRows;
template <>
inline constexpr const auto* wireRows<DiscType> = &discTypeRows;
template <>
inline constexpr const auto* wireRows<DiscConfidence> = &discConfidenceRows;
template <>
inline constexpr const auto* wireRows<AudienceType> = &audienceTypeRows;
template <>
inline constexpr const auto* wireRows<CallGoal> = &callGoalRows;
template <>
inline constexpr const auto* wireRows<CallOutcome> = &callOutcomeRows;
template <>
inline constexpr const auto* wireRows<AudioSourceTag> = &audioSourceTagRows;

}  // namespace corvellan
