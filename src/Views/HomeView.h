#pragma once

#include <memory>
#include <optional>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QSet>
#include <QString>
#include <QVariantList>
#include <set>
#include <stop_token>
#include <vector>

#include "Base/DateText.h"
#include "Base/Tasks.h"
#include "FixedRowsModel.h"
#include "Models/Briefing.h"
#include "RowsModel.h"
#include "Services/Protocols/SessionStoreProtocol.h"

namespace corvellan {

class BriefingServiceProtocol;
class HandoffWindowController;
class SessionViewModel;
class WebBrowser;

/// View state of the home screen, where a call is prepared and started: the company search with brief, handoff note
/// and timeline of one match, the notes and goals for the call, the next meetings and the last session. It keeps all
/// that for as long as it lives, over calls too. Colours are told by name, as `Theme::named` has them. Main thread.
///
/// Each load runs by itself and none is cancelled: a later answer overwrites an earlier one. Without an access token
/// nothing is loaded and nothing is said.
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

    // The brief of the unfolded result.
    Q_PROPERTY(bool isLoadingBrief READ isLoadingBrief NOTIFY briefChanged)
    Q_PROPERTY(bool hasBrief READ hasBrief NOTIFY briefChanged)
    /// Why there is no brief; empty while there is one.
    Q_PROPERTY(QString briefProblem READ briefProblem NOTIFY briefChanged)
    /// What the back-end says where it found nothing at all; empty for a brief that shows something.
    Q_PROPERTY(QString briefRemark READ briefRemark NOTIFY briefChanged)
    Q_PROPERTY(QVariantList revenueFacts READ revenueFacts NOTIFY briefChanged)
    Q_PROPERTY(QVariantList products READ products NOTIFY briefChanged)
    Q_PROPERTY(QVariantList contacts READ contacts NOTIFY briefChanged)
    /// "Notes (3)"; empty without notes.
    Q_PROPERTY(QString notesTitle READ notesTitle NOTIFY briefChanged)
    Q_PROPERTY(QAbstractItemModel* notes READ notes CONSTANT)
    Q_PROPERTY(bool hasCrmLink READ hasCrmLink NOTIFY briefChanged)
    Q_PROPERTY(bool hasHubspotLink READ hasHubspotLink NOTIFY briefChanged)

    // Its handoff note.
    Q_PROPERTY(bool homeHandoffExpanded READ homeHandoffExpanded NOTIFY handoffChanged)
    Q_PROPERTY(bool isLoadingHomeHandoff READ isLoadingHomeHandoff NOTIFY handoffChanged)
    Q_PROPERTY(bool hasHandoff READ hasHandoff NOTIFY handoffChanged)
    /// Maps with "symbol" and "text".
    Q_PROPERTY(QVariantList handoffStatistics READ handoffStatistics NOTIFY handoffChanged)
    Q_PROPERTY(QString handoffNote READ handoffNote NOTIFY handoffChanged)
    Q_PROPERTY(QString handoffProblem READ handoffProblem NOTIFY handoffChanged)

    // Its timeline.
    Q_PROPERTY(bool homeTimelineExpanded READ homeTimelineExpanded NOTIFY timelineChanged)
    Q_PROPERTY(bool isLoadingHomeTimeline READ isLoadingHomeTimeline NOTIFY timelineChanged)
    Q_PROPERTY(bool hasEvents READ hasEvents NOTIFY timelineChanged)
    /// The number of events; empty until a timeline has been loaded.
    Q_PROPERTY(QString eventCountText READ eventCountText NOTIFY timelineChanged)
    Q_PROPERTY(QAbstractItemModel* events READ events CONSTANT)
    Q_PROPERTY(QString timelineProblem READ timelineProblem NOTIFY timelineChanged)

    // Call prep.
    Q_PROPERTY(QString callPrepNotes READ callPrepNotes WRITE setCallPrepNotes NOTIFY callPrepNotesChanged)
    /// "950/1000".
    Q_PROPERTY(QString notesCounter READ notesCounter NOTIFY callPrepNotesChanged)
    Q_PROPERTY(QString notesCounterColor READ notesCounterColor NOTIFY callPrepNotesChanged)
    /// Rows of "symbol", "label", "colorName" and "isSelected".
    Q_PROPERTY(QAbstractItemModel* goals READ goals CONSTANT)

    // What is to come, and what was.
    Q_PROPERTY(bool hasMeetings READ hasMeetings NOTIFY meetingsChanged)
    /// Rows of "summary" and "timeRange".
    Q_PROPERTY(QAbstractItemModel* meetings READ meetings CONSTANT)
    Q_PROPERTY(bool hasLastSession READ hasLastSession NOTIFY lastSessionChanged)
    /// "4/6"; empty for a cold call.
    Q_PROPERTY(QString lastSessionScore READ lastSessionScore NOTIFY lastSessionChanged)
    Q_PROPERTY(QString lastSessionScoreColor READ lastSessionScoreColor NOTIFY lastSessionChanged)
    Q_PROPERTY(double lastSessionScoreOpacity READ lastSessionScoreOpacity NOTIFY lastSessionChanged)
    Q_PROPERTY(QString lastSessionTitle READ lastSessionTitle NOTIFY lastSessionChanged)
    Q_PROPERTY(bool wasLastSessionTraining READ wasLastSessionTraining NOTIFY lastSessionChanged)
    Q_PROPERTY(QString lastSessionCaption READ lastSessionCaption NOTIFY lastSessionChanged)
    /// All of it but the title, for screen readers.
    Q_PROPERTY(QString lastSessionSpoken READ lastSessionSpoken NOTIFY lastSessionChanged)

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
    /// The company whose brief has come last.
    [[nodiscard]] const std::optional<ResolvedCompany>& selectedCompanyMatch() const { return m_selectedCompanyMatch; }
    /// A tap on a result: unfolds it and loads its brief, or folds it.
    Q_INVOKABLE void toggleCompany(int row);
    void loadBrief(const ResolvedCompany& company);
    [[nodiscard]] const std::optional<SalesBrief>& companyBrief() const { return m_companyBrief; }
    [[nodiscard]] const std::optional<QString>& briefError() const { return m_briefError; }
    [[nodiscard]] bool isLoadingBrief() const { return m_isLoadingBrief; }
    [[nodiscard]] bool hasBrief() const { return m_companyBrief.has_value() && !m_isLoadingBrief; }
    [[nodiscard]] QString briefProblem() const;
    [[nodiscard]] QString briefRemark() const;
    [[nodiscard]] const QVariantList& revenueFacts() const { return m_revenueFacts; }
    [[nodiscard]] const QVariantList& products() const { return m_products; }
    [[nodiscard]] const QVariantList& contacts() const { return m_contacts; }
    [[nodiscard]] QString notesTitle() const;
    [[nodiscard]] RowsModel* notes() { return &m_notes; }
    [[nodiscard]] bool hasCrmLink() const;
    [[nodiscard]] bool hasHubspotLink() const;
    Q_INVOKABLE void openCrm();
    Q_INVOKABLE void openHubspot();

    [[nodiscard]] bool homeHandoffExpanded() const { return m_homeHandoffExpanded; }
    /// Folds or unfolds the note of a result. Unfolding loads it where there is none.
    Q_INVOKABLE void toggleHandoff(int row);
    void loadHomeHandoff(const ResolvedCompany& company);
    Q_INVOKABLE void loadHandoffOf(int row);
    [[nodiscard]] const std::optional<HandoffResponse>& homeHandoff() const { return m_homeHandoff; }
    [[nodiscard]] bool isLoadingHomeHandoff() const { return m_isLoadingHomeHandoff; }
    [[nodiscard]] bool hasHandoff() const { return m_homeHandoff.has_value() && !m_isLoadingHomeHandoff; }
    [[nodiscard]] QVariantList handoffStatistics() const;
    [[nodiscard]] QString handoffNote() const;
    [[nodiscard]] QString handoffProblem() const;
    /// Puts the note on the clipboard, as plain text.
    Q_INVOKABLE void copyHandoff() const;
    Q_INVOKABLE void openHandoffWindow();
    /// Opens a mail or telephone link of the note.
    Q_INVOKABLE void openNoteLink(const QString& address);

    [[nodiscard]] bool homeTimelineExpanded() const { return m_homeTimelineExpanded; }
    /// As `toggleHandoff`, for the timeline.
    Q_INVOKABLE void toggleTimeline(int row);
    void loadHomeTimeline(const ResolvedCompany& company);
    [[nodiscard]] const std::optional<TimelineResponse>& homeTimeline() const { return m_homeTimeline; }
    [[nodiscard]] bool isLoadingHomeTimeline() const { return m_isLoadingHomeTimeline; }
    [[nodiscard]] bool hasEvents() const;
    [[nodiscard]] QString eventCountText() const;
    [[nodiscard]] RowsModel* events() { return &m_events; }
    [[nodiscard]] QString timelineProblem() const;

    // MARK: - Call prep

    [[nodiscard]] const QString& callPrepNotes() const { return m_callPrepNotes; }
    /// Keeps the first 1,000 characters, and tells of the change whenever it has cut something.
    void setCallPrepNotes(const QString& notes);
    [[nodiscard]] QString notesCounter() const;
    [[nodiscard]] QString notesCounterColor() const;
    [[nodiscard]] FixedRowsModel* goals() { return &m_goals; }
    [[nodiscard]] const std::set<CallGoal>& selectedGoals() const { return m_selectedGoals; }
    Q_INVOKABLE void toggleGoal(int row);

    /// The notes without white space round them; absent when nothing is left.
    [[nodiscard]] std::optional<QString> currentCallNotes() const;
    /// In the goals' own order; absent when none is selected.
    [[nodiscard]] std::optional<std::vector<CallGoal>> currentGoals() const;

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
    [[nodiscard]] bool hasLastSession() const { return m_lastSession.has_value(); }
    [[nodiscard]] QString lastSessionScore() const;
    [[nodiscard]] QString lastSessionScoreColor() const;
    [[nodiscard]] double lastSessionScoreOpacity() const;
    [[nodiscard]] QString lastSessionTitle() const;
    [[nodiscard]] bool wasLastSessionTraining() const;
    [[nodiscard]] QString lastSessionCaption() const;
    [[nodiscard]] QString lastSessionSpoken() const;
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
    void briefChanged();
    void handoffChanged();
    void timelineChanged();
    void callPrepNotesChanged();
    void meetingsChanged();
    void lastSessionChanged();

private:
    using Self = QPointer<HomeView>;

    [[nodiscard]] const ResolvedCompany* company(int row) const;
    void setExpandedCompanyId(std::optional<QString> companyId);
    void setResults(std::vector<ResolvedCompany> results);
    void updateResults();
    void setBrief(std::optional<SalesBrief> brief);
    void setBriefError(std::optional<QString> error);
    void setHandoff(std::optional<HandoffResponse> handoff);
    void setTimeline(std::optional<TimelineResponse> timeline);
    void forgetLoaded();
    /// The part of `briefError` that begins with `prefix`, which names what could not be loaded.
    [[nodiscard]] QString problemOf(QStringView prefix) const;
    void open(const std::optional<QString>& address);

    // These outlive the view where they must, and do nothing more then.
    static QCoro::Task<void> fetchBrief(Self self, ResolvedCompany company);
    static QCoro::Task<void> fetchHandoff(Self self, ResolvedCompany company);
    static QCoro::Task<void> fetchTimeline(Self self, ResolvedCompany company);

    void updateGoals();
    void updateMeetings();
    void watchRecords();
    void follow(const SessionStoreProtocol::Index& index);

    Parts m_parts;
    QString m_quickStartCompany;
    std::optional<ResolvedCompany> m_selectedCompanyMatch;
    std::vector<ResolvedCompany> m_homeSearchResults;
    TaskSlot m_homeSearchTask;
    bool m_isHomeSearching = false;
    std::optional<QString> m_expandedCompanyId;
    std::optional<SalesBrief> m_companyBrief;
    QString m_callPrepNotes;
    std::set<CallGoal> m_selectedGoals;
    bool m_isLoadingBrief = false;
    std::optional<HandoffResponse> m_homeHandoff;
    bool m_isLoadingHomeHandoff = false;
    std::optional<TimelineResponse> m_homeTimeline;
    bool m_isLoadingHomeTimeline = false;
    bool m_homeHandoffExpanded = false;
    bool m_homeTimelineExpanded = false;
    bool m_isSearchFocused = false;
    std::optional<QString> m_briefError;

    // What is shown of the above.
    RowsModel m_results;
    QVariantList m_revenueFacts;
    QVariantList m_products;
    QVariantList m_contacts;
    RowsModel m_notes;
    RowsModel m_events;
    FixedRowsModel m_goals;
    RowsModel m_meetings;

    std::optional<SessionIndexEntry> m_lastSession;
    std::shared_ptr<void> m_recordWatch;
};

}  // namespace corvellan
