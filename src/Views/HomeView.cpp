#include "HomeView.h"

#include <algorithm>
#include <QClipboard>
#include <QGuiApplication>

#include "Base/Text.h"
#include "BriefText.h"
#include "HandoffStatistics.h"
#include "HandoffWindowController.h"
#include "Models/SessionRecord.h"
#include "Money.h"
#include "Platform/WebBrowser.h"
#include "RecordScore.h"
#include "Services/Protocols/BriefingServiceProtocol.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto searchDelay = 400ms;
constexpr qsizetype shortestQuery = 2;
constexpr int mostMatches = 3;
constexpr qsizetype longestNotes = 1000;
/// From here on the counter warns.
constexpr qsizetype longNotes = 901;
constexpr int mostMeetings = 3;

QString gray() {
    return colorName(ColorRole::gray);
}

}  // namespace

HomeView::HomeView(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_results({"name", "source", "domain", "revenue", "orders", "isExpanded", "chevron", "spoken"}),
      m_notes({"body", "caption"}),
      m_events({"symbol", "colorName", "title", "detail", "date"}),
      m_goals({"symbol", "label", "colorName", "isSelected"}, static_cast<int>(callGoalRows.size())),
      m_meetings({"summary", "timeRange"}) {
    SessionViewModel& session = m_parts.session;
    connect(&session, &SessionViewModel::userEmailChanged, this, &HomeView::accountChanged);
    connect(&session, &SessionViewModel::serverURLChanged, this, &HomeView::accountChanged);
    connect(&session, &SessionViewModel::errorMessageChanged, this, &HomeView::errorMessageChanged);
    connect(&session, &SessionViewModel::statusTextChanged, this, &HomeView::canStartChanged);
    connect(&session, &SessionViewModel::upcomingMeetingsChanged, this, &HomeView::updateMeetings);
    connect(&session, &SessionViewModel::modelContextChanged, this, &HomeView::watchRecords);
    updateGoals();
    updateMeetings();
    watchRecords();
}

HomeView::~HomeView() {
    m_homeSearchTask.cancel();
}

QString HomeView::productName() {
    return u"Corvellan Bram"_s;
}

bool HomeView::isLoggedIn() const {
    return m_parts.session.isLoggedIn();
}

QString HomeView::errorMessage() const {
    return m_parts.session.errorMessage().value_or(QString{});
}

bool HomeView::canStart() const {
    return !m_parts.session.isReachingServer();
}

void HomeView::login() {
    m_parts.session.login();
}

// MARK: - Search

void HomeView::setQuickStartCompany(const QString& text) {
    if (m_quickStartCompany == text)
        return;
    m_quickStartCompany = text;
    m_homeSearchTask.clear();
    // The answer to a search that was under way is no longer waited for.
    m_isHomeSearching = false;
    setExpandedCompanyId(std::nullopt);
    setBrief(std::nullopt);
    if (text::count(text) < shortestQuery) {
        setResults({});
        return;
    }
    Q_EMIT searchChanged();
    m_homeSearchTask = CancellableTask::start([self = Self{this}, text](std::stop_token stop) -> QCoro::Task<void> {
        if (!self)
            co_return;
        const auto end = co_await sleep(self->m_parts.clock, searchDelay, stop);
        if (end == SleepEnd::interrupted || !self)
            co_return;
        co_await self->runHomeSearch(text, stop);
    });
}

void HomeView::setIsSearchFocused(bool isFocused) {
    if (m_isSearchFocused == isFocused)
        return;
    m_isSearchFocused = isFocused;
    Q_EMIT isSearchFocusedChanged();
}

QString HomeView::searchIconColor() const {
    return m_isSearchFocused ? colorName(ColorRole::cyan) : gray();
}

void HomeView::clearSearch() {
    setQuickStartCompany({});
    setExpandedCompanyId(std::nullopt);
    setResults({});
    m_selectedCompanyMatch.reset();
    forgetLoaded();
}

QCoro::Task<void> HomeView::runHomeSearch(QString query, std::stop_token stop) {
    const Self self{this};
    m_isHomeSearching = true;
    Q_EMIT searchChanged();
    const auto token = co_await m_parts.session.authToken();
    if (!self || stop.stop_requested())
        co_return;
    if (token) {
        auto found = co_await m_parts.briefings.searchCompany(*token, query, mostMatches);
        if (!self || stop.stop_requested())
            co_return;
        setResults(found ? std::move(*found) : std::vector<ResolvedCompany>{});
    }
    m_isHomeSearching = false;
    Q_EMIT searchChanged();
}

void HomeView::setResults(std::vector<ResolvedCompany> results) {
    m_homeSearchResults = std::move(results);
    updateResults();
    Q_EMIT searchChanged();
}

void HomeView::updateResults() {
    std::vector<FixedRowsModel::Row> rows;
    for (const ResolvedCompany& company : m_homeSearchResults) {
        const bool isExpanded = m_expandedCompanyId == company.id.stringValue;
        const double total = company.totalRevenue.value_or(0);
        const QString domain = company.domain.value_or(QString{});
        const QString revenue = total > 0 ? formatUSD(total) : QString{};
        const QString orders = company.orderCount ? QString::number(*company.orderCount) + u" orders"_s : QString{};
        rows.push_back({company.name, company.source, domain, revenue, orders, isExpanded,
                        isExpanded ? u"chevron.up"_s : u"chevron.down"_s,
                        brief::joined({company.source, domain, revenue, orders}, u", "_s)});
    }
    m_results.assign(rows);
}

// MARK: - Results

const ResolvedCompany* HomeView::company(int row) const {
    const bool isThere = row >= 0 && row < static_cast<int>(m_homeSearchResults.size());
    return isThere ? &m_homeSearchResults[static_cast<std::size_t>(row)] : nullptr;
}

void HomeView::setExpandedCompanyId(std::optional<QString> companyId) {
    m_expandedCompanyId = std::move(companyId);
    updateResults();
}

void HomeView::toggleCompany(int row) {
    const ResolvedCompany* const tapped = company(row);
    if (!tapped)
        return;
    if (m_expandedCompanyId == tapped->id.stringValue) {
        setExpandedCompanyId(std::nullopt);
        setBrief(std::nullopt);
        return;
    }
    setExpandedCompanyId(tapped->id.stringValue);
    loadBrief(*tapped);
}

QString HomeView::briefProblem() const {
    return m_companyBrief || m_isLoadingBrief ? QString{} : m_briefError.value_or(QString{});
}

QString HomeView::briefRemark() const {
    const bool isEmpty = m_revenueFacts.isEmpty() && m_products.isEmpty() && m_contacts.isEmpty() &&
                         m_notes.rowCount() == 0 && !hasCrmLink() && !hasHubspotLink();
    return m_companyBrief && isEmpty ? m_companyBrief->error.value_or(QString{}) : QString{};
}

QString HomeView::notesTitle() const {
    const int count = m_notes.rowCount();
    return count == 0 ? QString{} : u"Notes (%1)"_s.arg(count);
}

bool HomeView::hasCrmLink() const {
    return m_companyBrief && m_companyBrief->links && brief::page(m_companyBrief->links->crm);
}

bool HomeView::hasHubspotLink() const {
    return m_companyBrief && m_companyBrief->links && brief::page(m_companyBrief->links->hubspot);
}

void HomeView::openCrm() {
    if (hasCrmLink())
        open(m_companyBrief->links->crm);
}

void HomeView::openHubspot() {
    if (hasHubspotLink())
        open(m_companyBrief->links->hubspot);
}

void HomeView::open(const std::optional<QString>& address) {
    static_cast<void>(CancellableTask::start(
        [&browser = m_parts.browser, page = brief::page(address).value()](std::stop_token) -> QCoro::Task<void> {
            // Nothing here reports a failure.
            static_cast<void>(co_await browser.open(page));
        }));
}

void HomeView::toggleHandoff(int row) {
    m_homeHandoffExpanded = !m_homeHandoffExpanded;
    Q_EMIT handoffChanged();
    if (m_homeHandoffExpanded && !m_homeHandoff && !m_isLoadingHomeHandoff)
        loadHandoffOf(row);
}

void HomeView::loadHandoffOf(int row) {
    if (const ResolvedCompany* const of = company(row))
        loadHomeHandoff(*of);
}

QVariantList HomeView::handoffStatistics() const {
    QVariantList rows;
    if (m_homeHandoff)
        for (const HandoffStatistic& statistic : corvellan::handoffStatistics(m_homeHandoff->meta))
            rows.append(QVariantMap{{u"symbol"_s, statistic.symbol}, {u"text"_s, statistic.text}});
    return rows;
}

QString HomeView::handoffNote() const {
    return m_homeHandoff ? m_homeHandoff->handoffNote : QString{};
}

QString HomeView::handoffProblem() const {
    return m_homeHandoff || m_isLoadingHomeHandoff ? QString{} : problemOf(u"Handoff: ");
}

void HomeView::copyHandoff() const {
    if (m_homeHandoff)
        QGuiApplication::clipboard()->setText(m_homeHandoff->handoffNote);
}

void HomeView::openHandoffWindow() {
    if (m_homeHandoff)
        m_parts.handoffWindowController.show(*m_homeHandoff);
}

void HomeView::openNoteLink(const QString& address) {
    static_cast<void>(CancellableTask::start(
        [&browser = m_parts.browser, contact = QUrl{address}](std::stop_token) -> QCoro::Task<void> {
            // Nothing here reports a failure.
            static_cast<void>(co_await browser.openContact(contact));
        }));
}

void HomeView::toggleTimeline(int row) {
    m_homeTimelineExpanded = !m_homeTimelineExpanded;
    Q_EMIT timelineChanged();
    const ResolvedCompany* const of = company(row);
    if (of && m_homeTimelineExpanded && !m_homeTimeline && !m_isLoadingHomeTimeline)
        loadHomeTimeline(*of);
}

bool HomeView::hasEvents() const {
    return m_homeTimeline && !m_homeTimeline->timeline.empty() && !m_isLoadingHomeTimeline;
}

QString HomeView::eventCountText() const {
    return m_homeTimeline ? QString::number(m_homeTimeline->timeline.size()) : QString{};
}

QString HomeView::timelineProblem() const {
    return m_homeTimeline || m_isLoadingHomeTimeline ? QString{} : problemOf(u"Timeline: ");
}

QString HomeView::problemOf(QStringView prefix) const {
    return m_briefError && m_briefError->startsWith(prefix) ? *m_briefError : QString{};
}

// MARK: - Call prep

void HomeView::setCallPrepNotes(const QString& notes) {
    const QString kept = text::prefix(notes, longestNotes);
    if (m_callPrepNotes == kept && kept == notes)
        return;
    m_callPrepNotes = kept;
    Q_EMIT callPrepNotesChanged();
}

QString HomeView::notesCounter() const {
    return u"%1/%2"_s.arg(text::count(m_callPrepNotes)).arg(longestNotes);
}

QString HomeView::notesCounterColor() const {
    return text::count(m_callPrepNotes) >= longNotes ? colorName(ColorRole::orange) : gray();
}

void HomeView::toggleGoal(int row) {
    if (row < 0 || row >= static_cast<int>(callGoalRows.size()))
        return;
    const CallGoal goal = callGoalRows.at(static_cast<std::size_t>(row)).value;
    if (m_selectedGoals.erase(goal) == 0)
        m_selectedGoals.insert(goal);
    updateGoals();
}

void HomeView::updateGoals() {
    std::vector<FixedRowsModel::Row> rows;
    for (const CallGoalRow& row : callGoalRows)
        rows.push_back({icon(row.value), label(row.value), colorName(row.color), m_selectedGoals.contains(row.value)});
    m_goals.assign(rows);
}

std::optional<QString> HomeView::currentCallNotes() const {
    const QString notes = text::trimmed(m_callPrepNotes);
    return notes.isEmpty() ? std::nullopt : std::optional{notes};
}

std::optional<std::vector<CallGoal>> HomeView::currentGoals() const {
    if (m_selectedGoals.empty())
        return std::nullopt;
    return std::vector<CallGoal>{m_selectedGoals.begin(), m_selectedGoals.end()};
}

// MARK: - Starting

void HomeView::startCallWithCompany(int row) {
    const ResolvedCompany* const with = company(row);
    if (!with || !canStart())
        return;
    m_parts.session.startSession({.company = with->name,
                                  .hubspotId = with->hubspotId,
                                  .callNotes = currentCallNotes(),
                                  .goals = currentGoals()});
}

void HomeView::startCallWithoutCompany() {
    if (canStart())
        m_parts.session.startSession({.callNotes = currentCallNotes(), .goals = currentGoals()});
}

void HomeView::startCall(const CalendarMeeting& meeting) {
    if (!canStart())
        return;
    const auto& match = meeting.matchedCompany;
    const StartRequest request{.company = match ? match->name : meeting.summary,
                               .hubspotId = match ? match->hubspotId : std::nullopt,
                               .calendarEventId = meeting.id,
                               .callNotes = currentCallNotes(),
                               .goals = currentGoals()};
    setQuickStartCompany(*request.company);
    m_parts.session.startSession(request);
}

void HomeView::startMeeting(int row) {
    const auto& all = m_parts.session.upcomingMeetings();
    if (row < 0 || row >= static_cast<int>(all.size()))
        return;
    // The session's list may change while it starts.
    const CalendarMeeting meeting = all[static_cast<std::size_t>(row)];
    startCall(meeting);
}

// MARK: - Meetings and the last session

bool HomeView::hasMeetings() const {
    return m_meetings.rowCount() > 0;
}

void HomeView::updateMeetings() {
    std::vector<FixedRowsModel::Row> rows;
    for (const CalendarMeeting& meeting : m_parts.session.upcomingMeetings()) {
        if (rows.size() == mostMeetings)
            break;
        rows.push_back({meeting.summary, meeting.timeRange(m_parts.dates)});
    }
    m_meetings.assign(rows);
    Q_EMIT meetingsChanged();
}

void HomeView::watchRecords() {
    m_recordWatch.reset();
    follow({});
    if (SessionStoreProtocol* const store = m_parts.session.modelContext())
        m_recordWatch = store->observe([self = Self{this}](const SessionStoreProtocol::Index& index) {
            if (self)
                self->follow(index);
        });
}

void HomeView::follow(const SessionStoreProtocol::Index& index) {
    if (index && !index->empty())
        m_lastSession = index->front();
    else
        m_lastSession.reset();
    Q_EMIT lastSessionChanged();
}

QString HomeView::lastSessionScore() const {
    if (!m_lastSession || m_lastSession->audience == AudienceType::coldCall)
        return {};
    return u"%1/%2"_s.arg(m_lastSession->meddicScore).arg(meddicCriteria);
}

QString HomeView::lastSessionScoreColor() const {
    return m_lastSession ? colorName(recordScoreTint(m_lastSession->meddicScore).role) : gray();
}

double HomeView::lastSessionScoreOpacity() const {
    return m_lastSession ? recordScoreTint(m_lastSession->meddicScore).opacity : 1;
}

QString HomeView::lastSessionTitle() const {
    if (!m_lastSession)
        return {};
    return m_lastSession->companyName.value_or(m_lastSession->scenario.value_or(u"Session"_s));
}

bool HomeView::wasLastSessionTraining() const {
    return m_lastSession && m_lastSession->wasTrainMode;
}

QString HomeView::lastSessionSpoken() const {
    return brief::joined(
        {lastSessionScore(), wasLastSessionTraining() ? u"Training"_s : QString{}, lastSessionCaption()}, u", "_s);
}

QString HomeView::lastSessionCaption() const {
    if (!m_lastSession)
        return {};
    const SessionRecord timed{.durationSecs = m_lastSession->durationSecs};
    return mediumDate(m_lastSession->createdDate, m_parts.dates) + u" · "_s + timed.formattedDuration();
}

}  // namespace corvellan
