#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <variant>
#include <vector>

#include "Base/Error.h"
#include "Types.h"

/// The JSON language of the coaching server: one flat object a message, its key "type" naming it.
///
/// Absent optional values are left out on writing; on reading, a missing key and a null are the same
/// for an optional field. Decoding is strict and concerns the whole message: an unknown type or
/// word, a missing required field or a number that does not fit fails it. Keys that a message does
/// not know are ignored. Numbers keep their width: 64-bit integers are exact; 42.0 and 1e3 are
/// integers, a fraction is not. All functions are pure and callable on any thread.
namespace corvellan {

/// Why bytes did not decode.
struct DecodingError {
    enum class Kind {
        notJson,
        missingField,
        wrongType,
        outOfRange,
        unknownValue,
        dataCorrupted,  ///< Text that is no date or the like; `detail` tells all of it.
    };

    Kind kind = Kind::notJson;
    QString path;    ///< The field, with the objects around it: "state.disc.type".
    QString detail;  ///< The unknown word, the parser's own words, the type expected.

    [[nodiscard]] QString errorDescription() const;
};

template <typename T>
using Decoded = std::expected<T, Error>;

/// A value that cannot be put on the wire.
struct EncodingError {
    QString detail;
    [[nodiscard]] QString errorDescription() const;
};

[[nodiscard]] QByteArray encode(const MeddicScore& score);
[[nodiscard]] QByteArray encode(const BuyerDisc& disc);
[[nodiscard]] Decoded<MeddicScore> decodeMeddicScore(QByteArrayView json);
[[nodiscard]] Decoded<BuyerDisc> decodeBuyerDisc(QByteArrayView json);

/// Lists as JSON arrays, the form in which the record store keeps them. An absent element is a null.
[[nodiscard]] QByteArray encode(const QStringList& list);
[[nodiscard]] QByteArray encode(const std::vector<std::optional<QString>>& list);
[[nodiscard]] Decoded<QStringList> decodeStrings(QByteArrayView json);
[[nodiscard]] Decoded<std::vector<std::optional<QString>>> decodeOptionalStrings(QByteArrayView json);

/// Evidence quotes by criterion, in the order of `MeddicScore::values`.
using MeddicEvidence = std::array<std::optional<QString>, meddicCriteria>;

struct StartSessionPayload {
    std::optional<QString> company;
    std::optional<QString> hubspotId;
    bool simMode = false;
    std::optional<QString> scenario;
    std::optional<DiscType> discType;
    std::optional<QString> calendarEventId;
    std::optional<QString> clientVersion;  ///< Written, never read.
    AudienceType audience = AudienceType::directSale;
    std::optional<QString> callNotes;
    std::optional<std::vector<CallGoal>> goals;
    bool gameMode = false;

    bool operator==(const StartSessionPayload&) const = default;
};

/// From this client to the coaching server.
struct ClientMsg {
    using StartSession = StartSessionPayload;
    struct Transcript {
        AudioSourceTag source = AudioSourceTag::mic;
        QString text;
        bool operator==(const Transcript&) const = default;
    };
    struct EndSession {
        bool operator==(const EndSession&) const = default;
    };
    struct SetOutcome {
        CallOutcome outcome = CallOutcome::demoBooked;
        bool operator==(const SetOutcome&) const = default;
    };
    struct SubmitFeedback {
        std::int16_t rating = 0;
        std::optional<QString> note;
        std::optional<QString> featureRequest;
        bool operator==(const SubmitFeedback&) const = default;
    };
    struct RefreshToken {
        bool operator==(const RefreshToken&) const = default;
    };
    struct Ping {
        bool operator==(const Ping&) const = default;
    };
    struct SetScreenShare {
        bool enabled = false;
        bool operator==(const SetScreenShare&) const = default;
    };

    using Value = std::variant<StartSession, Transcript, EndSession, SetOutcome, SubmitFeedback, RefreshToken, Ping,
                               SetScreenShare>;
    Value value;

    /// One JSON object. Fails for text that is not valid UTF-16 only if the library cannot write it.
    [[nodiscard]] std::expected<QByteArray, Error> encode() const;
    [[nodiscard]] static Decoded<ClientMsg> decode(QByteArrayView json);

    bool operator==(const ClientMsg&) const = default;
};

struct SessionStartedPayload {
    QString sessionId;
    std::optional<QString> openaiEphemeralToken;
    std::optional<QString> openaiRealtimeUrl;
    std::optional<QString> openaiEphemeralTokenSystem;
    std::optional<QString> openaiRealtimeUrlSystem;

    bool operator==(const SessionStartedPayload&) const = default;
};

struct CallStateSnapshot {
    CallStage callStage = CallStage::opening;
    std::uint8_t meddicScore = 0;  ///< The server's own number, carried beside `meddic`.
    MeddicScore meddic;
    BuyerDisc disc;
    CustomerSentiment sentiment = CustomerSentiment::neutral;
    std::optional<std::vector<std::optional<QString>>> meddicEvidence;
    std::optional<QString> callPhase;

    bool operator==(const CallStateSnapshot&) const = default;
};

struct CoachingPayload {
    QString message;
    CoachingType coachingType = CoachingType::whisper;
    std::optional<CoachingUrgency> urgency;
    std::optional<QString> productHint;
    CallStateSnapshot state;

    bool operator==(const CoachingPayload&) const = default;
};

struct SummaryPayload {
    std::uint64_t durationSecs = 0;
    std::int64_t turns = 0;
    MeddicScore meddic;
    BuyerDisc disc;
    QStringList coachingPoints;
    QStringList transcript;
    std::optional<QString> callId;

    bool operator==(const SummaryPayload&) const = default;
};

struct ExtensionContextPayload {
    QString entityType;
    QString entityId;
    std::optional<QString> displayName;
    std::optional<QString> companyName;
    std::optional<QString> hubspotCompanyId;
    bool callActive = false;

    bool operator==(const ExtensionContextPayload&) const = default;
};

/// From the coaching server to this client.
struct ServerMsg {
    using SessionStarted = SessionStartedPayload;
    using Coaching = CoachingPayload;
    struct CrmData {
        QString companyName;
        std::optional<QString> summary;
        bool operator==(const CrmData&) const = default;
    };
    using Summary = SummaryPayload;
    struct TokenRefreshed {
        QString openaiEphemeralToken;
        std::uint64_t expiresAt = 0;
        bool operator==(const TokenRefreshed&) const = default;
    };
    struct CounterpartToken {
        QString delta;
        bool operator==(const CounterpartToken&) const = default;
    };
    struct CounterpartDone {
        std::uint64_t latencyMs = 0;
        bool operator==(const CounterpartDone&) const = default;
    };
    struct Failure {  ///< "error" on the wire.
        QString message;
        bool operator==(const Failure&) const = default;
    };
    struct Pong {
        bool operator==(const Pong&) const = default;
    };
    using ExtensionContext = ExtensionContextPayload;
    struct ExtensionCallEnded {
        std::optional<std::uint64_t> durationSecs;
        bool operator==(const ExtensionCallEnded&) const = default;
    };

    using Value = std::variant<SessionStarted, Coaching, CrmData, Summary, TokenRefreshed, CounterpartToken,
                               CounterpartDone, Failure, Pong, ExtensionContext, ExtensionCallEnded>;
    Value value;

    [[nodiscard]] std::expected<QByteArray, Error> encode() const;
    [[nodiscard]] static Decoded<ServerMsg> decode(QByteArrayView json);

    bool operator==(const ServerMsg&) const = default;
};

}  // namespace corvellan
