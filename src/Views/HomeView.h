#pragma once

#include <optional>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QString>
#include <stop_token>
#include <vector>

#include "Base/DateText.h"
#include "Base/Tasks.h"
#include "CallPrep.h"
#include "CompanyDossier.h"
#include "LastSession.h"
#include "Models/Briefing.h"
#include "RowsModel.h"

namespace corvellan {

class BriefingServiceProtocol;
class HandoffWindowController;
class SessionViewModel;
class WebBrowser;

/// View state of the home screen, where a call is prepared and started: the company search with brief, handoff note
/// and timeline of one match, the notes and goals for the call, the next meetings and the last session. It keeps all
/// that for as long as it lives, over calls too. Colours are told by name, as `Theme::named` has them. Main thread.
///
/// Without an access token nothing is searched for, and nothing is said.
class HomeView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    Q_PROPERTY(QString productName READ productName CONSTANT)
    /// Somebody is signed in, or nobody has to.
    Q_PROPERTY(bool isLoggedIn READ isLoggedIn NOTIFY accountChanged)
    /// Empty for no trouble.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    /// No call is on its way to the server.
    Q_PROPERTY(bool canStart READ canStart NOTIFY canStartChanged)

    // The search.
    Q_PROPERTY(QString quickStartCompany READ quickStartCompany WRITE setQuickStartCompany NOTIFY searchChanged)
    Q_PROPERTY(bool isSearchFocused READ isSearchFocused WRITE setIsSearchFocused NOTIFY isSearchFocusedChanged)
    Q_PROPERTY(QString searchIconColor READ searchIconColor NOTIFY isSearchFocusedChanged)
    Q_PROPERTY(bool canClearSearch READ canClearSearch NOTIFY searchChanged)
    Q_PROPERTY(bool showsSearchHint READ showsSearchHint NOTIFY searchChanged)
    Q_PROPERTY(bool isHomeSearching READ isHomeSearching NOTIFY searchChanged)
    Q_PROPERTY(bool hasResults READ hasResults NOTIFY searchChanged)
    /// Rows of "name", "source", "domain", "revenue", "orders", "isExpanded", "chevron" and "spoken" (what is
    /// known, in one line); texts that there is nothing for are empty.
    Q_PROPERTY(QAbstractItemModel* results READ results CONSTANT)

    /// What is known of the unfolded result.
    Q_PROPERTY(corvellan::CompanyDossier* dossier READ dossier CONSTANT)
    Q_PROPERTY(corvellan::CallPrep* callPrep READ callPrep CONSTANT)

    // What is to come, and what was.
    Q_PROPERTY(bool hasMeetings READ hasMeetings NOTIFY meetingsChanged)
    /// Rows of "summary" and "timeRange".
    Q_PROPERTY(QAbstractItemModel* meetings READ meetings CONSTANT)
    Q_PROPERTY(corvellan::LastSession* lastSession READ lastSession CONSTANT)

public:
    /// What it is made of; all of it outlives the object.
    struct Parts {
        SessionViewModel& session;
        BriefingServiceProtocol& briefings;
        HandoffWindowController& handoffWindowController;
        Clock& clock;  ///< For the delay of the search.
        WebBrowser& browser;
        DateStyle dates = DateStyle::system();
    };

    explicit HomeView(Parts parts, QObject* parent = nullptr);
    ~HomeView() override;

    [[nodiscard]] static QString productName();
    [[nodiscard]] bool isLoggedIn() const;
    [[nodiscard]] QString errorMessage() const;
    [[nodiscard]] bool canStart() const;
    Q_INVOKABLE void login();

    // MARK: - Search

    [[nodiscard]] const QString& quickStartCompany() const { return m_quickStartCompany; }
    /// Folds what is unfolded and, from two characters on, searches 0.4 seconds after the last change.
    void setQuickStartCompany(const QString& text);
    [[nodiscard]] bool isSearchFocused() const { return m_isSearchFocused; }
    void setIsSearchFocused(bool isFocused);
    [[nodiscard]] QString searchIconColor() const;
    [[nodiscard]] bool canClearSearch() const { return !m_quickStartCompany.isEmpty(); }
    [[nodiscard]] bool showsSearchHint() const { return m_quickStartCompany.isEmpty() && !hasResults(); }
    [[nodiscard]] bool isHomeSearching() const { return m_isHomeSearching; }
    /// Empties the text, and forgets the results and all that was loaded for one of them.
    Q_INVOKABLE void clearSearch();
    /// Asks for three matches. A failure empties the list; one that is stopped changes nothing more.
    QCoro::Task<void> runHomeSearch(QString query, std::stop_token stop = {});
    [[nodiscard]] const std::vector<ResolvedCompany>& homeSearchResults() const { return m_homeSearchResults; }
    [[nodiscard]] bool hasResults() const { return !m_homeSearchResults.empty(); }
    [[nodiscard]] RowsModel* results() { return &m_results; }

    // MARK: - Results

    [[nodiscard]] const std::optional<QString>& expandedCompanyId() const { return m_expandedCompanyId; }
    /// A tap on a result: unfolds it and loads its brief, or folds it.
    Q_INVOKABLE void toggleCompany(int row);
    [[nodiscard]] CompanyDossier* dossier() { return &m_dossier; }
    /// Folds or unfolds the handoff note of a result. Unfolding loads it where there is none.
    Q_INVOKABLE void toggleHandoff(int row);
    Q_INVOKABLE void loadHandoffOf(int row);
    /// As `toggleHandoff`, for the timeline.
    Q_INVOKABLE void toggleTimeline(int row);

    [[nodiscard]] CallPrep* callPrep() { return &m_callPrep; }

    // MARK: - Starting

    /// Starts a call with the company of a result. Nothing happens while another start is on its way.
    Q_INVOKABLE void startCallWithCompany(int row);
    /// For desktops where neither tray nor shortcut starts one.
    Q_INVOKABLE void startCallWithoutCompany();
    /// Starts the call of a meeting, with its match or else under its own title.
    void startCall(const CalendarMeeting& meeting);
    Q_INVOKABLE void startMeeting(int row);

    // MARK: - Meetings and the last session

    [[nodiscard]] bool hasMeetings() const;
    [[nodiscard]] RowsModel* meetings() { return &m_meetings; }
    [[nodiscard]] LastSession* lastSession() { return &m_lastSession; }
    Q_INVOKABLE void openHistory() { Q_EMIT historyRequested(); }

    /// What times are written in.
    [[nodiscard]] const DateStyle& dates() const { return m_parts.dates; }

Q_SIGNALS:
    /// The user wants to see the past sessions.
    void historyRequested();

    void accountChanged();
    void errorMessageChanged();
    void canStartChanged();
    void searchChanged();
    void isSearchFocusedChanged();
    void meetingsChanged();

private:
    using Self = QPointer<HomeView>;

    [[nodiscard]] const ResolvedCompany* company(int row) const;
    void setExpandedCompanyId(std::optional<QString> companyId);
    void setResults(std::vector<ResolvedCompany> results);
    void updateResults();
    void updateMeetings();

    Parts m_parts;
    QString m_quickStartCompany;
    std::vector<ResolvedCompany> m_homeSearchResults;
    TaskSlot m_homeSearchTask;
    bool m_isHomeSearching = false;
    std::optional<QString> m_expandedCompanyId;
    bool m_isSearchFocused = false;
    RowsModel m_results;
    CompanyDossier m_dossier;
    CallPrep m_callPrep;
    LastSession m_lastSession;
    RowsModel m_meetings;
};

}  // namespace corvellan
