#include "OnboardingView.h"

#include <algorithm>
#include <array>
#include <span>
#include <stop_token>

#include "Base/Preferences.h"
#include "IntroductionRow.h"
#include "Platform/Permissions.h"
#include "Shell/PermissionChecker.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

struct OnboardingStep {
    std::string_view title;
    std::string_view symbol;
    std::string_view text;
    std::span<const IntroductionRow> rows;
    IntroductionNote note;
};

constexpr auto howItWorks = std::to_array<IntroductionRow>({
    {"", "magnifyingglass", "cyan", "Search & Call",
     "Find the company in CRM, hit Call. Bram connects to your mic and system audio."},
    {"", "ear", "green", "Bram Listens",
     "Your conversation is transcribed in real-time. Bram analyzes what both sides say."},
    {"", "text.bubble.fill", "orange", "Get Coaching",
     "Short tips appear on screen — 10 words max, readable in 5 seconds."},
    {"", "chart.bar.fill", "purple", "Review",
     "After the call — MEDDIC score, coaching highlights, and full transcript."},
});

constexpr auto crmCalendar = std::to_array<IntroductionRow>({
    {"", "magnifyingglass", "cyan", "Search Company",
     "Type a company name — Bram searches CRM and HubSpot. You'll see revenue, orders, contacts, and deal history."},
    {"", "doc.text.fill", "green", "Sales Brief",
     "Click a result to see the full brief — what they bought, open deals, key contacts. This context is sent to the "
     "coach during the call."},
    {"", "calendar", "orange", "Calendar",
     "Upcoming meetings from Google Calendar auto-match to CRM companies. One tap to start a coached call."},
});

constexpr auto meddic = std::to_array<IntroductionRow>({
    {"M", "", "green", "Metrics", "Quantified impact — cost, time, incidents"},
    {"E", "", "green", "Economic Buyer", "Who owns the budget?"},
    {"D", "", "yellow", "Decision Criteria", "What are they evaluating on?"},
    {"D", "", "yellow", "Decision Process", "What are the approval steps?"},
    {"I", "", "orange", "Identify Pain", "Explicit pain stated by customer"},
    {"C", "", "cyan", "Champion", "Internal advocate for your solution"},
});

const std::array<OnboardingStep, OnboardingView::totalSteps> stepTable{
    OnboardingStep{.title = "Welcome to Corvellan Bram",
                   .symbol = "waveform",
                   .text = "Your AI sales coach that listens to calls in real-time and whispers coaching tips — MEDDIC "
                           "tracking, objection handling, and next-step prompts.",
                   .rows = {},
                   .note = {}},
    OnboardingStep{.title = "How It Works", .symbol = "", .text = "", .rows = howItWorks, .note = {}},
    OnboardingStep{.title = "Company Search & Calendar",
                   .symbol = "",
                   .text = "The more Bram knows about the customer, the better coaching you get.",
                   .rows = crmCalendar,
                   .note = {.symbol = "info.circle",
                            .colorName = "cyan",
                            .opacity = 0.08,
                            .text = "Search may show duplicates from CRM and HubSpot — pick the one with more data "
                                    "(revenue, orders)."}},
    OnboardingStep{.title = "MEDDIC Scoring",
                   .symbol = "",
                   .text = "Bram tracks 6 deal qualification criteria during every call:",
                   .rows = meddic,
                   .note = {.symbol = "lightbulb.fill",
                            .colorName = "orange",
                            .opacity = 0.1,
                            .text = "Aim for 3/6 before offering a demo"}},
    OnboardingStep{.title = "Permissions",
                   .symbol = "",
                   .text = "Bram needs two permissions to coach you during calls.",
                   .rows = {},
                   .note = {}},
};

}  // namespace

OnboardingView::OnboardingView(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_permissionCards({"symbol", "title", "detail", "isGranted", "notice"}, 2) {
    connect(&m_parts.viewModel, &SessionViewModel::userEmailChanged, this, &OnboardingView::accountChanged);
    connect(this, &OnboardingView::stepChanged, this, &OnboardingView::accountChanged);
    updateCards();
}

OnboardingView::~OnboardingView() {
    m_readTask.cancel();
    m_requestTask.cancel();
}

QString OnboardingView::progressText() const {
    return u"%1 of %2"_s.arg(m_step + 1).arg(totalSteps);
}

QVariantMap OnboardingView::page() const {
    const OnboardingStep& step = stepTable.at(static_cast<std::size_t>(m_step));
    QVariantList rows;
    for (const IntroductionRow& row : step.rows)
        rows.push_back(asMap(row));
    return {{u"title"_s, tableText(step.title)},
            {u"symbol"_s, tableText(step.symbol)},
            {u"text"_s, tableText(step.text)},
            {u"rows"_s, rows},
            {u"note"_s, asMap(step.note)}};
}

QString OnboardingView::accountText() const {
    const auto email = m_parts.viewModel.userEmail();
    return m_step == 0 && email ? u"Signed in as "_s + *email : QString{};
}

void OnboardingView::appear() {
    m_readTask.clear();
    m_requestTask.clear();
    m_micGranted = false;
    m_screenGranted = false;
    m_isMicRefused = false;
    updateCards();
    setStep(0);
}

void OnboardingView::back() {
    if (canGoBack())
        setStep(m_step - 1);
}

void OnboardingView::next() {
    if (!isLastStep())
        setStep(m_step + 1);
}

void OnboardingView::finish() {
    m_parts.preferences.setBoolean(u"onboardingCompleted"_s, true);
    if (m_parts.onComplete)
        m_parts.onComplete();
}

void OnboardingView::enable(int card) {
    if (card == 0)
        requestMicrophone();
    else if (card == 1)
        m_parts.systemSettings.openPrivacyPane(PrivacyPane::screenCapture);
}

void OnboardingView::requestMicrophone() {
    m_requestTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        if (stop.stop_requested())
            co_return;
        const bool isGranted = co_await m_parts.permissions.requestMicrophone();
        if (stop.stop_requested())
            co_return;
        m_micGranted = isGranted;
        m_isMicRefused = !isGranted;
        updateCards();
    });
}

void OnboardingView::readPermissions() {
    if (!isLastStep())
        return;
    m_readTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        if (stop.stop_requested())
            co_return;
        const auto state = co_await m_parts.permissions.check();
        if (stop.stop_requested())
            co_return;
        m_micGranted = state.microphone == PermissionStatus::granted;
        m_screenGranted = state.screenRecording == PermissionStatus::granted;
        updateCards();
    });
}

void OnboardingView::setStep(int step) {
    if (m_step == step)
        return;
    m_step = step;
    Q_EMIT stepChanged();
    readPermissions();
}

void OnboardingView::updateCards() {
    // A desktop on Linux asks nobody: a microphone that was refused is one that is not there.
    const QString refusal =
        u"No microphone answers. Choose one in your desktop's sound settings, then press Enable again."_s;
    m_permissionCards.assign({
        {u"mic.circle.fill"_s, u"Microphone"_s, u"Captures your voice for real-time transcription"_s, m_micGranted,
         m_isMicRefused && !m_micGranted ? refusal : QString{}},
        {u"rectangle.on.rectangle.circle.fill"_s, u"Screen Recording"_s,
         u"Captures customer voice from Zoom / Meet / Teams"_s, m_screenGranted, QString{}},
    });
}

}  // namespace corvellan
