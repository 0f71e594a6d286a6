#pragma once

#include <memory>
#include <QObject>
#include <QString>

#include "HomeFixture.h"
#include "Views/Theme.h"

namespace corvellan::test {

/// Gives QML tests the home screen and the calendar over a session of fakes, and the hand to change what there is.
class HomeDriver : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* home READ home NOTIFY madeAnew)
    Q_PROPERTY(QObject* calendar READ calendar NOTIFY madeAnew)
    Q_PROPERTY(QObject* theme READ theme NOTIFY madeAnew)

public:
    HomeDriver();
    ~HomeDriver() override;

    [[nodiscard]] QObject* home();
    [[nodiscard]] QObject* calendar();
    [[nodiscard]] QObject* theme();

    /// Forgets everything; call before the screens of a test are made.
    Q_INVOKABLE void reset();
    /// The search finds two companies, the first with everything there can be of it.
    Q_INVOKABLE void knowCompanies();
    /// Briefs have so many products and contacts from now on.
    Q_INVOKABLE void fillBriefs(int rows);
    /// Every load fails from now on.
    Q_INVOKABLE void failLoads();
    /// Answers are held back, or let go.
    Q_INVOKABLE void holdAnswers(bool isHeld);
    Q_INVOKABLE void letTimePass(int milliseconds);
    Q_INVOKABLE void settle();

    /// On a server where people sign in, with nobody signed in.
    Q_INVOKABLE void signOut();
    Q_INVOKABLE void setUser(const QString& email);
    Q_INVOKABLE void setError(const QString& text);
    /// Meetings of an hour each, the first with seven attendees and a match.
    Q_INVOKABLE void setMeetings(int count);
    Q_INVOKABLE void setCalendarError(const QString& text);
    Q_INVOKABLE void setLoadingMeetings(bool isLoading);
    /// A finished session of this company; an empty name means none.
    Q_INVOKABLE void addRecord(const QString& company, bool isTraining, bool isColdCall);
    Q_INVOKABLE void holdConnecting();
    Q_INVOKABLE void setDark(bool isDark);

    Q_INVOKABLE [[nodiscard]] int searches() const;
    /// How often the list of meetings was asked for.
    Q_INVOKABLE [[nodiscard]] int meetingRequests() const;
    Q_INVOKABLE [[nodiscard]] bool didLogIn() const;
    Q_INVOKABLE [[nodiscard]] bool isSessionActive();
    Q_INVOKABLE [[nodiscard]] QString currentCompany();
    Q_INVOKABLE [[nodiscard]] QString openedPage() const;
    Q_INVOKABLE [[nodiscard]] int handoffsShown() const;
    Q_INVOKABLE [[nodiscard]] int historyRequests() const { return m_historyRequests; }
    Q_INVOKABLE [[nodiscard]] QString clipboard() const;

Q_SIGNALS:
    void madeAnew();

private:
    struct World;
    SessionViewModel& session();

    std::unique_ptr<World> m_world;
    int m_historyRequests = 0;
};

}  // namespace corvellan::test
