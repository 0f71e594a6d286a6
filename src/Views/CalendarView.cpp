#include "CalendarView.h"

#include <algorithm>

#include "HomeView.h"
#include "MeetingText.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

CalendarView::CalendarView(SessionViewModel& session, HomeView& home, QObject* parent)
    : QObject(parent),
      m_session(session),
      m_home(home),
      m_meetings({"summary", "timeRange", "isExpanded", "chevron", "attendees", "moreAttendees", "companyName",
                  "companyCountry", "companyRevenue"}) {
    connect(&session, &SessionViewModel::calendarErrorChanged, this, &CalendarView::updateState);
    connect(&session, &SessionViewModel::isLoadingMeetingsChanged, this, &CalendarView::updateState);
    connect(&session, &SessionViewModel::upcomingMeetingsChanged, this, &CalendarView::updateMeetings);
    connect(&home, &HomeView::canStartChanged, this, &CalendarView::canStartChanged);
    updateMeetings();
}

void CalendarView::refresh() {
    m_session.fetchUpcomingMeetings();
}

QString CalendarView::calendarError() const {
    return m_session.calendarError().value_or(QString{});
}

bool CalendarView::showsLoading() const {
    return m_session.isLoadingMeetings() && m_session.upcomingMeetings().empty();
}

bool CalendarView::showsEmptyState() const {
    return m_session.upcomingMeetings().empty() && !m_session.isLoadingMeetings() && !m_session.calendarError();
}

bool CalendarView::canStart() const {
    return m_home.canStart();
}

void CalendarView::toggleMeeting(int row) {
    const auto& all = m_session.upcomingMeetings();
    if (row < 0 || row >= static_cast<int>(all.size()))
        return;
    const QString& id = all[static_cast<std::size_t>(row)].id;
    m_expandedMeetingId = m_expandedMeetingId == id ? std::nullopt : std::optional{id};
    updateMeetings();
}

bool CalendarView::foldMeeting() {
    const auto isUnfolded = [this](const CalendarMeeting& meeting) { return m_expandedMeetingId == meeting.id; };
    // One that was unfolded may have left the list since.
    if (std::ranges::none_of(m_session.upcomingMeetings(), isUnfolded))
        return false;
    m_expandedMeetingId.reset();
    updateMeetings();
    return true;
}

void CalendarView::startCall(int row) {
    m_home.startMeeting(row);
}

void CalendarView::updateMeetings() {
    std::vector<FixedRowsModel::Row> rows;
    for (const CalendarMeeting& meeting : m_session.upcomingMeetings()) {
        const bool isExpanded = m_expandedMeetingId == meeting.id;
        rows.push_back({meeting.summary, meeting.timeRange(m_home.dates()), isExpanded,
                        isExpanded ? u"chevron.up"_s : u"chevron.down"_s, meeting::attendees(meeting),
                        meeting::moreAttendees(meeting), meeting::companyName(meeting),
                        meeting::companyCountry(meeting), meeting::companyRevenue(meeting)});
    }
    m_meetings.assign(rows);
    updateState();
}

void CalendarView::updateState() {
    const State state{.error = calendarError(), .isLoading = showsLoading(), .isEmpty = showsEmptyState()};
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

}  // namespace corvellan
