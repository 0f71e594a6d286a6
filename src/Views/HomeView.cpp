#include "HomeView.h"

#include "Base/Text.h"
#include "BriefText.h"
#include "Money.h"
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
constexpr int mostMeetings = 3;

}  // namespace

HomeView::HomeView(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_results({"name", "source", "domain", "revenue", "orders", "isExpanded", "chevron", "spoken"}),
      m_dossier({.session = m_parts.session,
                 .briefings = m_parts.briefings,
                 .handoffWindowController = m_parts.handoffWindowController,
                 .browser = m_parts.browser,
                 .dates = m_parts.dates}),
      m_lastSession(m_parts.session, m_parts.dates),
      m_meetings({"summary", "timeRange"}) {
    SessionViewModel& session = m_parts.session;
    connect(&session, &SessionViewModel::userEmailChanged, this, &HomeView::accountChanged);
    connect(&session, &SessionViewModel::serverURLChanged, this, &HomeView::accountChanged);
    connect(&session, &SessionViewModel::errorMessageChanged, this, &HomeView::errorMessageChanged);
    connect(&session, &SessionViewModel::statusTextChanged, this, &HomeView::canStartChanged);
    connect(&session, &SessionViewModel::upcomingMeetingsChanged, this, &HomeView::updateMeetings);
    updateMeetings();
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
    m_dossier.forgetBrief();
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
    return colorName(m_isSearchFocused ? ColorRole::cyan : ColorRole::gray);
}

void HomeView::clearSearch() {
    setQuickStartCompany({});
    setExpandedCompanyId(std::nullopt);
    setResults({});
    m_dossier.clear();
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
        m_dossier.forgetBrief();
        return;
    }
    setExpandedCompanyId(tapped->id.stringValue);
    m_dossier.loadBrief(*tapped);
}

void HomeView::toggleHandoff(int row) {
    m_dossier.toggleHandoff(company(row));
}

void HomeView::loadHandoffOf(int row) {
    if (const ResolvedCompany* const of = company(row))
        m_dossier.loadHomeHandoff(*of);
}

void HomeView::toggleTimeline(int row) {
    m_dossier.toggleTimeline(company(row));
}

// MARK: - Starting

void HomeView::startCallWithCompany(int row) {
    const ResolvedCompany* const with = company(row);
    if (!with || !canStart())
        return;
    m_parts.session.startSession({.company = with->name,
                                  .hubspotId = with->hubspotId,
                                  .callNotes = m_callPrep.currentCallNotes(),
                                  .goals = m_callPrep.currentGoals()});
}

void HomeView::startCallWithoutCompany() {
    if (canStart())
        m_parts.session.startSession({.callNotes = m_callPrep.currentCallNotes(), .goals = m_callPrep.currentGoals()});
}

void HomeView::startCall(const CalendarMeeting& meeting) {
    if (!canStart())
        return;
    const auto& match = meeting.matchedCompany;
    const StartRequest request{.company = match ? match->name : meeting.summary,
                               .hubspotId = match ? match->hubspotId : std::nullopt,
                               .calendarEventId = meeting.id,
                               .callNotes = m_callPrep.currentCallNotes(),
                               .goals = m_callPrep.currentGoals()};
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

// MARK: - Meetings

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

}  // namespace corvellan
