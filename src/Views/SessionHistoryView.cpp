#include "SessionHistoryView.h"

#include <algorithm>

#include "Base/DebugLog.h"
#include "MeddicLabels.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int statCardCount = 4;
constexpr auto dayCheckInterval = 1min;

template <typename Rows>
QStringList rawTexts(const Rows& rows) {
    QStringList texts;
    for (const auto& row : rows)
        texts << tableText(row.raw);
    return texts;
}

}  // namespace

SessionHistoryView::SessionHistoryView(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_days(m_parts.detail.dates),
      m_statCards({"title", "value", "colorName"}, statCardCount),
      m_criterionRates({"letter", "isHigh", "rate", "spoken"}, meddicCriteria) {
    using Session = SessionViewModel;
    connect(&m_parts.session, &Session::modelContextChanged, this, &SessionHistoryView::followStore);
    connect(&m_parts.session, &Session::lastSummaryChanged, this, &SessionHistoryView::onLastSummary);
    connect(&m_parts.session, &Session::isSyncingHistoryChanged, this, &SessionHistoryView::stateChanged);
    followStore();
}

SessionHistoryView::~SessionHistoryView() {
    m_openTask.clear();
    m_dayTask.clear();
}

// MARK: - Records

void SessionHistoryView::followStore() {
    m_records.reset();
    m_observation.reset();
    if (SessionStoreProtocol* const store = m_parts.session.modelContext())
        m_observation = store->observe([this](SessionStoreProtocol::Index records) { onIndex(std::move(records)); });
    Q_EMIT stateChanged();
}

void SessionHistoryView::onIndex(SessionStoreProtocol::Index records) {
    m_records = std::move(records);
    const bool isFreshThere = m_countBeforeSummary && recordCount() > *m_countBeforeSummary;
    if (isFreshThere)
        m_countBeforeSummary.reset();
    if (m_isShowing && m_detail)
        readOpenRecord();
    else if (m_isShowing)
        refreshList();
    else if (m_rows.rowCount() == 0)
        fillList();  // So that a screen which is made before it is opened has its rows.
    if (m_isShowing && isFreshThere)
        openFresh();
    Q_EMIT stateChanged();
}

void SessionHistoryView::onLastSummary() {
    m_countBeforeSummary.reset();
    if (!m_parts.session.lastSummary())
        return;
    // The summary comes before its record, and the newest record until then is another session's.
    if (m_parts.session.modelContext())
        m_countBeforeSummary = recordCount();
}

void SessionHistoryView::openFresh() {
    if (m_parts.session.lastSummary() && !m_countBeforeSummary && recordCount() > 0)
        openRecord(m_records->front().id);
}

QString SessionHistoryView::state() const {
    if (recordCount() > 0)
        return u"list"_s;
    if (m_parts.session.isSyncingHistory())
        return u"syncing"_s;
    return m_observation && !m_records ? u"loading"_s : u"empty"_s;
}

QString SessionHistoryView::storeProblem() const {
    return m_parts.session.modelContext() ? QString{}
                                          : u"The store of past sessions is not open; sessions are not kept."_s;
}

// MARK: - List

void SessionHistoryView::appear() {
    m_isShowing = true;
    m_filterMode = FilterMode::all;
    m_timeRange = TimeRange::allTime;
    m_lastOpen.reset();
    m_openTask.clear();
    setOpenProblem({});
    Q_EMIT filtersChanged();
    showList();
    followDays();
}

void SessionHistoryView::disappear() {
    m_isShowing = false;
    m_openTask.clear();
    m_dayTask.clear();
    closeRecord();
}

void SessionHistoryView::showList() {
    refreshList();
    m_parts.session.syncHistory();
    openFresh();
}

void SessionHistoryView::refreshList() {
    m_parts.debugLog.write(u"HISTORY_VIEW: records.count="_s + QString::number(recordCount()));
    fillList();
}

void SessionHistoryView::fillList() {
    static const auto none = std::make_shared<const std::vector<SessionIndexEntry>>();
    const auto records = m_records ? m_records : none;
    const WallTime now = m_parts.detail.clock.wallNow();
    auto filtered = filteredRecords(*records, m_filterMode, cutoff(m_timeRange, now, m_days));
    m_statistics = SessionStatistics::of(*records, filtered);
    auto sections = groupedSections(*records, filtered, now, m_days);
    m_rows.assign(records, std::move(filtered), std::move(sections));

    m_statCards.assign({
        {u"Sessions"_s, QString::number(m_statistics.sessions), colorName(ColorRole::cyan)},
        {u"Avg MEDDIC"_s, m_statistics.avgMeddicText(), colorName(m_statistics.avgMeddicColor())},
        {u"Avg Duration"_s, m_statistics.avgDuration(), colorName(ColorRole::gray)},
        {u"Total Time"_s, m_statistics.totalDuration(), colorName(ColorRole::gray)},
    });
    constexpr double half = 0.5;
    std::vector<FixedRowsModel::Row> rates;
    for (int i = 0; i < meddicCriteria; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const QString rate = m_statistics.meddicCriterionText(i);
        rates.push_back({QString{meddicLetters[at]}, m_statistics.meddicCriterionRate(i) > half, rate,
                         meddicLabels[at] + u": "_s + rate});
    }
    m_criterionRates.assign(rates);
    Q_EMIT listChanged();
}

void SessionHistoryView::followDays() {
    m_dayTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        Clock& clock = m_parts.session.environment().clock;
        auto today = m_days.dayOf(clock.wallNow());
        while (true) {
            // Not the whole day at once: the clock that waits stands while the computer sleeps.
            const auto untilMidnight = std::max(today.end - clock.wallNow(), WallTime::duration{1});
            if (co_await sleep(clock, std::min<std::chrono::nanoseconds>(untilMidnight, dayCheckInterval), stop) ==
                SleepEnd::interrupted)
                co_return;
            if (today.contains(clock.wallNow()))
                continue;
            today = m_days.dayOf(clock.wallNow());
            if (!m_detail)
                refreshList();
        }
    });
}

void SessionHistoryView::syncHistory() {
    m_parts.session.syncHistory();
}

QStringList SessionHistoryView::filterModes() {
    return rawTexts(filterModeRows);
}

void SessionHistoryView::setFilterMode(FilterMode mode) {
    if (m_filterMode == mode)
        return;
    m_filterMode = mode;
    refreshList();
    Q_EMIT filtersChanged();
}

void SessionHistoryView::setFilterModeIndex(int index) {
    if (index >= 0 && index < static_cast<int>(filterModeRows.size()))
        setFilterMode(filterModeRows.at(static_cast<std::size_t>(index)).value);
}

QStringList SessionHistoryView::timeRanges() {
    return rawTexts(timeRangeRows);
}

void SessionHistoryView::setTimeRange(TimeRange range) {
    if (m_timeRange == range)
        return;
    m_timeRange = range;
    refreshList();
    Q_EMIT filtersChanged();
}

void SessionHistoryView::setTimeRangeIndex(int index) {
    if (index >= 0 && index < static_cast<int>(timeRangeRows.size()))
        setTimeRange(timeRangeRows.at(static_cast<std::size_t>(index)).value);
}

QString SessionHistoryView::noMatchText() const {
    return m_statistics.sessions == 0 ? noMatch(m_filterMode) : QString{};
}

QString SessionHistoryView::noMatch(FilterMode mode) {
    return u"No %1 sessions yet"_s.arg(tableText(rawValue(mode)).toLower());
}

// MARK: - One record

void SessionHistoryView::open(int row) {
    if (row >= 0 && row < m_rows.rowCount())
        openRecord(m_rows.record(row).id);
}

int SessionHistoryView::lastOpenRow() const {
    return m_lastOpen ? m_rows.rowOf(*m_lastOpen) : -1;
}

void SessionHistoryView::openRecord(QUuid id) {
    m_openTask = CancellableTask::start([this, id](std::stop_token stop) -> QCoro::Task<void> {
        SessionStoreProtocol* const store = stop.stop_requested() ? nullptr : m_parts.session.modelContext();
        if (!store)
            co_return;
        auto found = co_await store->fetch(id);
        if (stop.stop_requested())
            co_return;
        if (found && *found)
            show(std::move(**found));
        else
            setOpenProblem(found ? u"This session is no longer stored."_s : found.error().errorDescription());
    });
}

void SessionHistoryView::readOpenRecord() {
    openRecord(m_detail->record().id);
}

void SessionHistoryView::show(SessionRecord record) {
    setOpenProblem({});
    if (m_detail && m_detail->record().id == record.id) {
        m_detail->setRecord(std::move(record));
        return;
    }
    closeRecord();
    m_lastOpen = record.id;
    const auto onBack = [this] {
        m_openTask.clear();
        closeRecord();
        m_parts.session.setLastSummary(std::nullopt);
        showList();
    };
    m_detail = std::make_unique<SessionRecordDetailView>(std::move(record), &m_parts.session, onBack, m_parts.detail);
    Q_EMIT detailChanged();
}

void SessionHistoryView::closeRecord() {
    if (!m_detail)
        return;
    // The screen lets go of it first, and it may be in the middle of closing itself.
    auto* const closed = m_detail.release();
    Q_EMIT detailChanged();
    closed->deleteLater();
}

void SessionHistoryView::setOpenProblem(const QString& problem) {
    if (m_openProblem == problem)
        return;
    m_openProblem = problem;
    Q_EMIT openProblemChanged();
}

}  // namespace corvellan
