#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <QString>
#include <string_view>

#include "EnumTable.h"

/// The enumerations and small records that the coaching protocol carries and the screens show, with
/// their labels, icons and colour roles. Everything here is a plain value, usable on any thread.
///
/// For each enumeration `X` there is one table `xRows`, in the protocol's order, the conversion to
/// its wire word `rawValue(x)` and the fallible one from it, `x(raw)`.
namespace corvellan {

/// Colours by role; `Views/Theme` alone knows what they look like.
enum class ColorRole {
    white,
    gray,
    red,
    orange,
    yellow,
    green,
    mint,
    cyan,
    blue,
    purple,
    gold,
    discDominant,
    discInfluential,
    discSteady,
    discConscientious,
};

/// A colour role at an opacity from 0 to 1.
struct Tint {
    ColorRole role = ColorRole::white;
    double opacity = 1.0;

    bool operator==(const Tint&) const = default;
};

// MARK: - CallStage

/// The call's position.
enum class CallStage {
    opening,
    discovery,
    qualification,
    demo,
    negotiation,
    objectionHandling,
    closing,
    support,
    renewal
};

struct CallStageRow {
    CallStage value;
    std::string_view raw;
    std::string_view abbreviation;
    int level;
};

/// The last two stages lie outside the sales ladder and read as level 0, like the opening.
inline constexpr std::array callStageRows{
    CallStageRow{CallStage::opening, "opening", "OPN", 0},
    CallStageRow{CallStage::discovery, "discovery", "DIS", 1},
    CallStageRow{CallStage::qualification, "qualification", "QUA", 2},
    CallStageRow{CallStage::demo, "demo", "DEM", 3},
    CallStageRow{CallStage::negotiation, "negotiation", "NEG", 4},
    CallStageRow{CallStage::objectionHandling, "objection_handling", "OBJ", 5},
    CallStageRow{CallStage::closing, "closing", "CLS", 6},
    CallStageRow{CallStage::support, "support", "SUP", 0},
    CallStageRow{CallStage::renewal, "renewal", "REN", 0},
};

[[nodiscard]] constexpr std::string_view rawValue(CallStage stage) {
    return rowOf(callStageRows, stage).raw;
}
[[nodiscard]] constexpr std::optional<CallStage> callStage(std::string_view raw) {
    return valueOf(callStageRows, raw);
}
/// The three letters of the stage strip.
[[nodiscard]] inline QString abbreviation(CallStage stage) {
    return tableText(rowOf(callStageRows, stage).abbreviation);
}
/// The rank that fills the stage strip, 0 to 6.
[[nodiscard]] constexpr int level(CallStage stage) {
    return rowOf(callStageRows, stage).level;
}

// MARK: - CoachingType

/// What kind of tip a coaching message is.
enum class CoachingType { whisper, questionPrompt, objectionHandler, dataPoint, stageTransition, silence, listen };

struct CoachingTypeRow {
    CoachingType value;
    std::string_view raw;
    std::string_view label;
    ColorRole color;
};

inline constexpr std::array coachingTypeRows{
    CoachingTypeRow{CoachingType::whisper, "whisper", "WHISPER", ColorRole::gold},
    CoachingTypeRow{CoachingType::questionPrompt, "question_prompt", "QUESTION", ColorRole::cyan},
    CoachingTypeRow{CoachingType::objectionHandler, "objection_handler", "OBJECTION", ColorRole::red},
    CoachingTypeRow{CoachingType::dataPoint, "data_point", "DATA", ColorRole::green},
    CoachingTypeRow{CoachingType::stageTransition, "stage_transition", "STAGE", ColorRole::purple},
    CoachingTypeRow{CoachingType::silence, "silence", "SILENCE", ColorRole::gray},
    CoachingTypeRow{CoachingType::listen, "listen", "LISTEN", ColorRole::gray},
};

[[nodiscard]] constexpr std::string_view rawValue(CoachingType type) {
    return rowOf(coachingTypeRows, type).raw;
}
[[nodiscard]] constexpr std::optional<CoachingType> coachingType(std::string_view raw) {
    return valueOf(coachingTypeRows, raw);
}
/// The text of the tip's badge.
[[nodiscard]] inline QString label(CoachingType type) {
    return tableText(rowOf(coachingTypeRows, type).label);
}
/// The colour of the tip's badge.
[[nodiscard]] constexpr ColorRole color(CoachingType type) {
    return rowOf(coachingTypeRows, type).color;
}

// MARK: - CoachingUrgency

enum class CoachingUrgency { high, medium, low };

struct CoachingUrgencyRow {
    CoachingUrgency value;
    std::string_view raw;
};

inline constexpr std::array coachingUrgencyRows{
    CoachingUrgencyRow{CoachingUrgency::high, "high"},
    CoachingUrgencyRow{CoachingUrgency::medium, "medium"},
    CoachingUrgencyRow{CoachingUrgency::low, "low"},
};

[[nodiscard]] constexpr std::string_view rawValue(CoachingUrgency urgency) {
    return rowOf(coachingUrgencyRows, urgency).raw;
}
[[nodiscard]] constexpr std::optional<CoachingUrgency> coachingUrgency(std::string_view raw) {
    return valueOf(coachingUrgencyRows, raw);
}

// MARK: - CustomerSentiment

enum class CustomerSentiment { positive, neutral, skeptical, frustrated, confused, interested, resistant, eager };

struct CustomerSentimentRow {
    CustomerSentiment value;
    std::string_view raw;
    std::string_view emoji;
    Tint color;
};

inline constexpr std::array customerSentimentRows{
    CustomerSentimentRow{CustomerSentiment::positive, "positive", "\U0001F60A", {ColorRole::green}},
    CustomerSentimentRow{CustomerSentiment::neutral, "neutral", "\U0001F610", {ColorRole::white, 0.6}},
    CustomerSentimentRow{CustomerSentiment::skeptical, "skeptical", "\U0001F928", {ColorRole::yellow}},
    CustomerSentimentRow{CustomerSentiment::frustrated, "frustrated", "\U0001F624", {ColorRole::red}},
    CustomerSentimentRow{CustomerSentiment::confused, "confused", "\U0001F615", {ColorRole::yellow}},
    CustomerSentimentRow{CustomerSentiment::interested, "interested", "\U0001F929", {ColorRole::green}},
    CustomerSentimentRow{CustomerSentiment::resistant, "resistant", "\U0001F645", {ColorRole::red}},
    CustomerSentimentRow{CustomerSentiment::eager, "eager", "\U0001F525", {ColorRole::green}},
};

[[nodiscard]] constexpr std::string_view rawValue(CustomerSentiment sentiment) {
    return rowOf(customerSentimentRows, sentiment).raw;
}
[[nodiscard]] constexpr std::optional<CustomerSentiment> customerSentiment(std::string_view raw) {
    return valueOf(customerSentimentRows, raw);
}
[[nodiscard]] inline QString emoji(CustomerSentiment sentiment) {
    return tableText(rowOf(customerSentimentRows, sentiment).emoji);
}
[[nodiscard]] constexpr Tint color(CustomerSentiment sentiment) {
    return rowOf(customerSentimentRows, sentiment).color;
}

// MARK: - DiscType

/// The buyer's DISC type. The five cases are also the full list of pickers, in this order.
enum class DiscType { dominant, influential, steady, conscientious, unknown };

struct DiscTypeRow {
    DiscType value;
    std::string_view raw;
    std::string_view overlayLabel;
    std::string_view label;
    Tint color;
    ColorRole overlayColor;
};

/// Two label sets on purpose: what the overlay calls unknown, the picker offers as random.
inline constexpr std::array discTypeRows{
    DiscTypeRow{DiscType::dominant, "dominant", "Dominant", "Dominant", {ColorRole::red, 0.7}, ColorRole::discDominant},
    DiscTypeRow{DiscType::influential,
                "influential",
                "Influential",
                "Influential",
                {ColorRole::yellow, 0.7},
                ColorRole::discInfluential},
    DiscTypeRow{DiscType::steady, "steady", "Steady", "Steady", {ColorRole::green, 0.7}, ColorRole::discSteady},
    DiscTypeRow{DiscType::conscientious,
                "conscientious",
                "Conscientious",
                "Conscientious",
                {ColorRole::blue, 0.7},
                ColorRole::discConscientious},
    DiscTypeRow{DiscType::unknown, "unknown", "Unknown", "Random", {ColorRole::gray, 0.5}, ColorRole::gray},
};

[[nodiscard]] constexpr std::string_view rawValue(DiscType type) {
    return rowOf(discTypeRows, type).raw;
}
[[nodiscard]] constexpr std::optional<DiscType> discType(std::string_view raw) {
    return valueOf(discTypeRows, raw);
}
/// The label in the training picker.
[[nodiscard]] inline QString label(DiscType type) {
    return tableText(rowOf(discTypeRows, type).label);
}
/// The colour in the training picker.
[[nodiscard]] constexpr Tint color(DiscType type) {
    return rowOf(discTypeRows, type).color;
}
[[nodiscard]] inline QString overlayLabel(DiscType type) {
    return tableText(rowOf(discTypeRows, type).overlayLabel);
}
[[nodiscard]] constexpr ColorRole overlayColor(DiscType type) {
    return rowOf(discTypeRows, type).overlayColor;
}

// MARK: - DiscConfidence

enum class DiscConfidence { low, medium, high };

struct DiscConfidenceRow {
    DiscConfidence value;
    std::string_view raw;
};

inline constexpr std::array discConfidenceRows{
    DiscConfidenceRow{DiscConfidence::low, "low"},
    DiscConfidenceRow{DiscConfidence::medium, "medium"},
    DiscConfidenceRow{DiscConfidence::high, "high"},
};

[[nodiscard]] constexpr std::string_view rawValue(DiscConfidence confidence) {
    return rowOf(discConfidenceRows, confidence).raw;
}
[[nodiscard]] constexpr std::optional<DiscConfidence> discConfidence(std::string_view raw) {
    return valueOf(discConfidenceRows, raw);
}

// MARK: - AudienceType

/// The coaching mode of a call.
enum class AudienceType { directSale, channelPartner, coldCall, discovery };

struct AudienceTypeRow {
    AudienceType value;
    std::string_view raw;
    std::string_view label;
    std::string_view icon;
    ColorRole accentColor;
};

inline constexpr std::array audienceTypeRows{
    AudienceTypeRow{AudienceType::directSale, "direct_sale", "Sales", "person.2", ColorRole::blue},
    AudienceTypeRow{AudienceType::channelPartner, "channel_partner", "Channel", "building.2", ColorRole::purple},
    AudienceTypeRow{AudienceType::coldCall, "cold_call", "Cold Call", "phone.arrow.up.right", ColorRole::orange},
    AudienceTypeRow{AudienceType::discovery, "discovery", "Discovery", "magnifyingglass", ColorRole::green},
};

[[nodiscard]] constexpr std::string_view rawValue(AudienceType audience) {
    return rowOf(audienceTypeRows, audience).raw;
}
[[nodiscard]] constexpr std::optional<AudienceType> audienceType(std::string_view raw) {
    return valueOf(audienceTypeRows, raw);
}
[[nodiscard]] inline QString label(AudienceType audience) {
    return tableText(rowOf(audienceTypeRows, audience).label);
}
[[nodiscard]] inline QString icon(AudienceType audience) {
    return tableText(rowOf(audienceTypeRows, audience).icon);
}
[[nodiscard]] constexpr ColorRole accentColor(AudienceType audience) {
    return rowOf(audienceTypeRows, audience).accentColor;
}

// MARK: - CallGoal

/// What the salesperson wants from this call.
enum class CallGoal { discovery, demoFollowup, budgetTimeline, closeNegotiate, supportEscalation, renewal, upsell };

struct CallGoalRow {
    CallGoal value;
    std::string_view raw;
    std::string_view label;
    std::string_view icon;
    ColorRole color;
};

inline constexpr std::array callGoalRows{
    CallGoalRow{CallGoal::discovery, "discovery", "Discovery", "magnifyingglass", ColorRole::blue},
    CallGoalRow{CallGoal::demoFollowup, "demo_followup", "Demo", "play.rectangle", ColorRole::purple},
    CallGoalRow{CallGoal::budgetTimeline, "budget_timeline", "Budget", "dollarsign.circle", ColorRole::green},
    CallGoalRow{CallGoal::closeNegotiate, "close_negotiate", "Close", "checkmark.seal", ColorRole::orange},
    CallGoalRow{CallGoal::supportEscalation, "support_escalation", "Support", "wrench.and.screwdriver", ColorRole::red},
    CallGoalRow{CallGoal::renewal, "renewal", "Renewal", "arrow.triangle.2.circlepath", ColorRole::cyan},
    CallGoalRow{CallGoal::upsell, "upsell", "Upsell", "arrow.up.right", ColorRole::mint},
};

[[nodiscard]] constexpr std::string_view rawValue(CallGoal goal) {
    return rowOf(callGoalRows, goal).raw;
}
[[nodiscard]] constexpr std::optional<CallGoal> callGoal(std::string_view raw) {
    return valueOf(callGoalRows, raw);
}
[[nodiscard]] inline QString label(CallGoal goal) {
    return tableText(rowOf(callGoalRows, goal).label);
}
[[nodiscard]] inline QString icon(CallGoal goal) {
    return tableText(rowOf(callGoalRows, goal).icon);
}
[[nodiscard]] constexpr ColorRole color(CallGoal goal) {
    return rowOf(callGoalRows, goal).color;
}

// MARK: - CallOutcome

/// The result that the salesperson records after a call.
enum class CallOutcome { demoBooked, followUp, noInterest, voicemail };

struct CallOutcomeRow {
    CallOutcome value;
    std::string_view raw;
    std::string_view displayName;
    std::string_view icon;
};

inline constexpr std::array callOutcomeRows{
    CallOutcomeRow{CallOutcome::demoBooked, "demo_booked", "Demo Booked", "calendar.badge.checkmark"},
    CallOutcomeRow{CallOutcome::followUp, "follow_up", "Follow Up", "arrow.uturn.right"},
    CallOutcomeRow{CallOutcome::noInterest, "no_interest", "No Interest", "hand.thumbsdown"},
    CallOutcomeRow{CallOutcome::voicemail, "voicemail", "Voicemail", "recordingtape"},
};

[[nodiscard]] constexpr std::string_view rawValue(CallOutcome outcome) {
    return rowOf(callOutcomeRows, outcome).raw;
}
[[nodiscard]] constexpr std::optional<CallOutcome> callOutcome(std::string_view raw) {
    return valueOf(callOutcomeRows, raw);
}
[[nodiscard]] inline QString displayName(CallOutcome outcome) {
    return tableText(rowOf(callOutcomeRows, outcome).displayName);
}
[[nodiscard]] inline QString icon(CallOutcome outcome) {
    return tableText(rowOf(callOutcomeRows, outcome).icon);
}

// MARK: - AudioSourceTag

/// Which side a transcript line came from.
enum class AudioSourceTag { mic, system };

struct AudioSourceTagRow {
    AudioSourceTag value;
    std::string_view raw;
};

inline constexpr std::array audioSourceTagRows{
    AudioSourceTagRow{AudioSourceTag::mic, "mic"},
    AudioSourceTagRow{AudioSourceTag::system, "system"},
};

[[nodiscard]] constexpr std::string_view rawValue(AudioSourceTag tag) {
    return rowOf(audioSourceTagRows, tag).raw;
}
[[nodiscard]] constexpr std::optional<AudioSourceTag> audioSourceTag(std::string_view raw) {
    return valueOf(audioSourceTagRows, raw);
}

// MARK: - Records

inline constexpr int meddicCriteria = 6;

/// The six MEDDIC qualification criteria confirmed so far.
struct MeddicScore {
    bool metrics = false;
    bool economicBuyer = false;
    bool decisionCriteria = false;
    bool decisionProcess = false;
    bool identifyPain = false;
    bool champion = false;

    /// The six criteria in the order of declaration.
    [[nodiscard]] constexpr std::array<bool, meddicCriteria> values() const {
        return {metrics, economicBuyer, decisionCriteria, decisionProcess, identifyPain, champion};
    }
    /// How many criteria hold, 0 to 6.
    [[nodiscard]] constexpr int score() const {
        int count = 0;
        for (const bool value : values())
            count += value ? 1 : 0;
        return count;
    }
    bool operator==(const MeddicScore&) const = default;
};

/// The criteria's names for people, in the order of `MeddicScore::values`.
inline constexpr std::array<std::string_view, meddicCriteria> meddicDisplayNames{
    "Metrics", "Economic Buyer", "Decision Criteria", "Decision Process", "Identify Pain", "Champion"};

/// The DISC reading of the buyer.
struct BuyerDisc {
    DiscType discType = DiscType::unknown;
    DiscConfidence confidence = DiscConfidence::low;
    QString signals_;  // Travels as "signals", which is a keyword of Qt's.

    bool operator==(const BuyerDisc&) const = default;
};

}  // namespace corvellan
