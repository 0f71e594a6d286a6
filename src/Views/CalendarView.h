#pragma once

#include <optional>
#include <QObject>
#include <QQmlEngine>
#include <QString>

#include "RowsModel.h"

namespace corvellan {

class HomeView;
class SessionViewModel;

/// View state of the calendar: the upcoming meetings, of which one may be unfolded. Main thread.
class CalendarView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// Empty for no trouble.
    Q_PROPERTY(QString calendarError READ calendarError NOTIFY stateChanged)
    // At any time one of these three holds.
    Q_PROPERTY(bool showsLoading READ showsLoading NOTIFY stateChanged)
    Q_PROPERTY(bool showsEmptyState READ showsEmptyState NOTIFY stateChanged)
    Q_PROPERTY(bool showsMeetings READ showsMeetings NOTIFY stateChanged)
    /// Rows of "summary", "timeRange", "isExpanded", "chevron", "attendees" (maps with "name" and "email"),
    /// "moreAttendees", "companyName", "companyCountry" and "companyRevenue".
    Q_PROPERTY(QAbstractItemModel* meetings READ meetings CONSTANT)
    /// No call is on its way to the server.
    Q_PROPERTY(bool canStart READ canStart NOTIFY canStartChanged)

public:
    /// Both outlive the object.
    CalendarView(SessionViewModel& session, HomeView& home, QObject* parent = nullptr);

    /// The screen has appeared.
    Q_INVOKABLE void appear() { refresh(); }
    /// Asks for the meetings; the session decides whether those it has are old enough.
    Q_INVOKABLE void refresh();

    [[nodiscard]] QString calendarError() const;
    [[nodiscard]] bool showsLoading() const;
    [[nodiscard]] bool showsEmptyState() const;
    [[nodiscard]] bool showsMeetings() const { return !showsLoading() && !showsEmptyState(); }
    [[nodiscard]] RowsModel* meetings() { return &m_meetings; }
    [[nodiscard]] bool canStart() const;

    [[nodiscard]] const std::optional<QString>& expandedMeetingId() const { return m_expandedMeetingId; }
    /// Unfolds a meeting in place of any other, or folds it.
    Q_INVOKABLE void toggleMeeting(int row);
    /// Folds the meeting that is unfolded. \return false when none is
    Q_INVOKABLE bool foldMeeting();
    /// Starts the call of a meeting, as the home screen does.
    Q_INVOKABLE void startCall(int row);

Q_SIGNALS:
    void stateChanged();
    void canStartChanged();

private:
    struct State {
        QString error;
        bool isLoading = false;
        bool isEmpty = true;

        bool operator==(const State&) const = default;
    };

    void updateMeetings();
    /// Tells of a change only where there is one: the keyboard moves with it.
    void updateState();

    SessionViewModel& m_session;
    HomeView& m_home;
    std::optional<QString> m_expandedMeetingId;
    RowsModel m_meetings;
    State m_state;
};

}  // namespace corvellan
