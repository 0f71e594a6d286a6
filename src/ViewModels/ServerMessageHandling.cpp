#include <algorithm>
#include <limits>

#include "Base/Text.h"
#include "SessionViewModel.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvellan {

namespace {

constexpr auto flashDuration = 1500ms;
constexpr auto coachingStageDuration = 2s;
constexpr qsizetype loggedTipLength = 200;
constexpr qsizetype loggedReplyLength = 500;
/// Shorter sessions leave no summary screen and no record.
constexpr std::uint64_t shortestKeptSessionSecs = 10;

template <typename... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};

}  // namespace

void SessionViewModel::handleServerMessage(const ServerMsg& message) {
    std::visit(Overloaded{
                   // The pipeline has read the first one; a later one changes nothing.
                   [](const ServerMsg::SessionStarted&) {},
                   [this](const ServerMsg::Coaching& coaching) { handle(coaching); },
                   [this](const ServerMsg::CrmData& crm) {
                       if (!crm.summary)
                           return;
                       setCrmBrief(crm.summary);
                       setCoachingMessage(u"CRM brief loaded for "_s + crm.companyName);
                   },
                   [this](const ServerMsg::Summary& summary) { handle(summary); },
                   // A session runs on the tokens that it started with.
                   [](const ServerMsg::TokenRefreshed&) {},
                   [this](const ServerMsg::CounterpartToken& token) { handle(token); },
                   [this](const ServerMsg::CounterpartDone&) { handleCounterpartDone(); },
                   [this](const ServerMsg::Failure& failure) { setErrorMessage(u"Server: "_s + failure.message); },
                   [](const ServerMsg::Pong&) {},
                   [this](const ServerMsg::ExtensionContext& context) {
                       setExtensionContext(context);
                       if (context.callActive && !m_extensionCallActive)
                           onExtensionCallDetected(context);
                       else
                           setExtensionCallActive(context.callActive);
                   },
                   [this](const ServerMsg::ExtensionCallEnded&) { onExtensionCallEnded(); },
               },
               message.value);
}

void SessionViewModel::handle(const CoachingPayload& coaching) {
    ++m_environment.diagnostics.tips;
    debugLog(u"COACHING: "_s + text::prefix(coaching.message, loggedTipLength));
    setCoachingMessage(coaching.message);
    setCoachingType(coaching.coachingType);
    setCoachingUrgency(coaching.urgency);
    setProductHint(coaching.productHint);

    const auto& state = coaching.state;
    setCallStage(state.callStage);
    if (state.callPhase && !state.callPhase->isEmpty())
        setCallPhase(state.callPhase);
    const auto before = m_meddicScore;
    setMeddicJustConfirmed(std::nullopt);
    flashNewCriterion(before, state.meddic);
    setMeddicScore(state.meddic);
    if (state.meddicEvidence && state.meddicEvidence->size() == m_meddicEvidence.size()) {
        MeddicEvidence evidence;
        std::ranges::copy(*state.meddicEvidence, evidence.begin());
        setMeddicEvidence(std::move(evidence));
    }
    setBuyerDisc(state.disc);
    setSentiment(state.sentiment);
    setStatusText(u"Coaching"_s);

    const bool isSpoken =
        coaching.coachingType != CoachingType::silence && coaching.coachingType != CoachingType::listen;
    if (isSpoken && !coaching.message.isEmpty())
        appendLine(TranscriptSource::coach, coaching.message);

    if (m_isTrainMode) {
        setTrainStage(TrainStage::coaching);
        m_coachingResetTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
            const auto end = co_await sleep(m_environment.clock, coachingStageDuration, stop);
            if (end == SleepEnd::elapsed && m_trainStage == TrainStage::coaching) {
                setTrainStage(TrainStage::listening);
                setStatusText(u"Listening..."_s);
            }
        });
    }
}

void SessionViewModel::flashNewCriterion(const MeddicScore& before, const MeddicScore& after) {
    const auto old = before.values();
    const auto present = after.values();
    for (int index = 0; index < meddicCriteria; ++index) {
        const auto i = static_cast<std::size_t>(index);
        if (old[i] || !present[i])
            continue;
        setMeddicJustConfirmed(index);
        // Not kept in a slot: the test on waking keeps an old timer from clearing a newer flash.
        runDetached([this, index](std::stop_token stop) -> QCoro::Task<void> {
            co_await sleep(m_environment.clock, flashDuration, stop);
            if (m_meddicJustConfirmed == index)
                setMeddicJustConfirmed(std::nullopt);
        });
        return;
    }
}

void SessionViewModel::handle(const SummaryPayload& summary) {
    m_logger.info(u"Session summary received"_s);
    // The pipeline stays up: it ends when the server closes, or with the next start.
    setIsSessionActive(false);
    // Armed for this session: a next one that starts within its 3 seconds is none of its business.
    m_endSessionTimeoutTask.clear();
    setStatusText(u"Session ended"_s);
    if (summary.durationSecs < shortestKeptSessionSecs) {
        setLastSummary(std::nullopt);
        return;
    }
    setLastSummary(summary);
    if (m_modelContext)
        storeRecord(summary);
}

void SessionViewModel::storeRecord(const SummaryPayload& summary) {
    constexpr auto longest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    auto record = SessionRecord::make(
        {
            .durationSecs = static_cast<std::int64_t>(std::min(summary.durationSecs, longest)),
            .turns = summary.turns,
            .meddic = summary.meddic,
            .disc = summary.disc,
            .coachingPoints = summary.coachingPoints,
            .transcript = summary.transcript,
            .scenario = m_currentScenario,
            .wasTrainMode = m_isTrainMode,
            .companyName = m_currentCompany,
            .calendarEventId = m_currentCalendarEventId,
            .callId = summary.callId,
            // The preference as it stands now, not what the session was started with.
            .audience = m_coachingMode,
        },
        m_environment.clock.wallNow());
    record.meddicEvidence.emplace(m_meddicEvidence.begin(), m_meddicEvidence.end());
    runDetached([this, record = std::move(record)](std::stop_token) -> QCoro::Task<void> {
        co_await m_modelContext->insert(record);
        const auto saved = co_await m_modelContext->save();
        if (saved)
            ++m_environment.diagnostics.recordsStored;
    });
}

void SessionViewModel::handle(const ServerMsg::CounterpartToken& token) {
    setCounterpartStreamingText(m_counterpartStreamingText + token.delta);
    setTrainStage(TrainStage::counterpartSpeaking);
    if (!m_isTtsMuted)
        m_tts->feedToken(token.delta);
}

void SessionViewModel::handleCounterpartDone() {
    const auto reply = text::trimmed(m_counterpartStreamingText);
    debugLog(u"COUNTERPART_DONE: "_s + text::prefix(reply, loggedReplyLength));
    setCounterpartStreamingText({});
    if (!reply.isEmpty())
        appendLine(TranscriptSource::system, reply);
    if (!m_isTtsMuted)
        m_tts->flush();
    else
        // No end of speech will come to move the stage.
        resumeListening();
}

}  // namespace corvellan
