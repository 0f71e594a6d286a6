#pragma once

#include <memory>
#include <optional>
#include <QObject>
#include <QQmlEngine>
#include <QStringList>

#include "Base/CalendarDays.h"
#include "Base/Tasks.h"
#include "FixedRowsModel.h"
#include "SessionListModel.h"
#include "SessionRecordDetailView.h"
#include "Views/History/SessionStatistics.h"

namespace corvellan {

class DebugLog;
class SessionViewModel;

/// View state of the history: the stored sessions with filters and statistics, and the one that is open. It follows
/// the store for as long as it lives, and computes only while it is shown. Colours are told by name, as
/// `Theme::named` has them. Main thread.
class SessionHistoryView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// "loading" until the records are known, "syncing" or "empty" without any, else "list".
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    /// Why there are no records to show; empty for no trouble.
    Q_PROPERTY(QString storeProblem READ storeProblem NOTIFY stateChanged)
    /// Why the record that was asked for is not open; empty for no trouble.
    Q_PROPERTY(QString openProblem READ openProblem NOTIFY openProblemChanged)

    Q_PROPERTY(QStringList filterModes READ filterModes CONSTANT)
    /// Index into `filterModes`.
    Q_PROPERTY(int filterModeIndex READ filterModeIndex WRITE setFilterModeIndex NOTIFY filtersChanged)
    Q_PROPERTY(QStringList timeRanges READ timeRanges CONSTANT)
    /// Index into `timeRanges`.
    Q_PROPERTY(int timeRangeIndex READ timeRangeIndex WRITE setTimeRangeIndex NOTIFY filtersChanged)

    /// What is said in place of the statistics; empty when there are any.
    Q_PROPERTY(QString noMatchText READ noMatchText NOTIFY listChanged)
    /// Rows of "title", "value" and "colorName".
    Q_PROPERTY(QAbstractItemModel* statCards READ statCards CONSTANT)
    /// Rows of "letter", "isHigh", "rate" and "spoken".
    Q_PROPERTY(QAbstractItemModel* criterionRates READ criterionRates CONSTANT)
    Q_PROPERTY(QAbstractItemModel* rows READ rows CONSTANT)

    /// The summary of the open record; null while the list shows.
    Q_PROPERTY(corvellan::SessionRecordDetailView* detail READ detail NOTIFY detailChanged)

public:
    /// What it is made of; all of it outlives the object.
    struct Parts {
        SessionViewModel& session;
        const DebugLog& debugLog;
        SessionRecordDetailView::Parts detail;
    };

    explicit SessionHistoryView(Parts parts, QObject* parent = nullptr);
    ~SessionHistoryView() override;

    /// The screen has appeared, with the filters as they are at first and no record open.
    Q_INVOKABLE void appear();
    /// The screen is gone.
    Q_INVOKABLE void disappear();

    /// All that are stored, as far as they are known.
    [[nodiscard]] std::size_t recordCount() const { return m_records ? m_records->size() : 0; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] QString storeProblem() const;
    [[nodiscard]] QString openProblem() const { return m_openProblem; }
    Q_INVOKABLE void syncHistory();

    [[nodiscard]] static QStringList filterModes();
    [[nodiscard]] FilterMode filterMode() const { return m_filterMode; }
    void setFilterMode(FilterMode mode);
    [[nodiscard]] int filterModeIndex() const { return static_cast<int>(m_filterMode); }
    void setFilterModeIndex(int index);
    [[nodiscard]] static QStringList timeRanges();
    [[nodiscard]] TimeRange timeRange() const { return m_timeRange; }
    void setTimeRange(TimeRange range);
    [[nodiscard]] int timeRangeIndex() const { return static_cast<int>(m_timeRange); }
    void setTimeRangeIndex(int index);

    [[nodiscard]] QString noMatchText() const;
    [[nodiscard]] FixedRowsModel* statCards() { return &m_statCards; }
    [[nodiscard]] FixedRowsModel* criterionRates() { return &m_criterionRates; }
    [[nodiscard]] SessionListModel* rows() { return &m_rows; }

    [[nodiscard]] SessionRecordDetailView* detail() { return m_detail.get(); }
    /// Opens the record of a row. It is read first; the list stays until then.
    Q_INVOKABLE void open(int row);
    /// The row that was open last; -1 for none, and for one that the list does not show.
    Q_INVOKABLE [[nodiscard]] int lastOpenRow() const;

    // The rules, pure.

    /// "No live sessions yet". For all of them it reads "No all sessions yet", as it is meant.
    [[nodiscard]] static QString noMatch(FilterMode mode);

Q_SIGNALS:
    void stateChanged();
    void openProblemChanged();
    void filtersChanged();
    void listChanged();
    void detailChanged();

private:
    void followStore();
    void onIndex(SessionStoreProtocol::Index records);
    void onLastSummary();
    /// What happens each time the list appears.
    void showList();
    void refreshList();
    void fillList();
    /// While the list shows, "Today" becomes "Yesterday" at midnight.
    void followDays();
    void openFresh();
    void openRecord(QUuid id);
    void readOpenRecord();
    void show(SessionRecord record);
    void closeRecord();
    void setOpenProblem(const QString& problem);

    Parts m_parts;
    /// Null until they are known.
    SessionStoreProtocol::Index m_records;
    std::unique_ptr<SessionRecordDetailView> m_detail;
    FilterMode m_filterMode = FilterMode::all;
    TimeRange m_timeRange = TimeRange::allTime;

    CalendarDays m_days;
    bool m_isShowing = false;
    QString m_openProblem;
    std::optional<QUuid> m_lastOpen;
    /// Set while the record of the summary is still being stored: so many records there were before.
    std::optional<std::size_t> m_countBeforeSummary;
    SessionListModel m_rows;
    FixedRowsModel m_statCards;
    FixedRowsModel m_criterionRates;
    SessionStatistics m_statistics;
    std::shared_ptr<void> m_observation;
    TaskSlot m_openTask;
    TaskSlot m_dayTask;
};

}  // namespace corvellan
