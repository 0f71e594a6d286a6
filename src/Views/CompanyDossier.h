#pragma once

#include <optional>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QString>
#include <QVariantList>

#include "Base/DateText.h"
#include "Base/Tasks.h"
#include "Models/Briefing.h"
#include "RowsModel.h"

namespace corvellan {

class BriefingServiceProtocol;
class HandoffWindowController;
class SessionViewModel;
class WebBrowser;

/// What is known of one company: its brief, and on request its handoff note and its timeline. Main thread.
///
/// Each load runs by itself and none is cancelled: a later answer overwrites an earlier one. Without an access token
/// nothing is loaded and nothing is said.
class CompanyDossier : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the home screen's state")

    // The brief.
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

    // The handoff note.
    Q_PROPERTY(bool homeHandoffExpanded READ homeHandoffExpanded NOTIFY handoffChanged)
    Q_PROPERTY(bool isLoadingHomeHandoff READ isLoadingHomeHandoff NOTIFY handoffChanged)
    Q_PROPERTY(bool hasHandoff READ hasHandoff NOTIFY handoffChanged)
    /// Maps with "symbol" and "text".
    Q_PROPERTY(QVariantList handoffStatistics READ handoffStatistics NOTIFY handoffChanged)
    Q_PROPERTY(QString handoffNote READ handoffNote NOTIFY handoffChanged)
    Q_PROPERTY(QString handoffProblem READ handoffProblem NOTIFY handoffChanged)

    // The timeline.
    Q_PROPERTY(bool homeTimelineExpanded READ homeTimelineExpanded NOTIFY timelineChanged)
    Q_PROPERTY(bool isLoadingHomeTimeline READ isLoadingHomeTimeline NOTIFY timelineChanged)
    Q_PROPERTY(bool hasEvents READ hasEvents NOTIFY timelineChanged)
    /// The number of events; empty until a timeline has been loaded.
    Q_PROPERTY(QString eventCountText READ eventCountText NOTIFY timelineChanged)
    Q_PROPERTY(QAbstractItemModel* events READ events CONSTANT)
    Q_PROPERTY(QString timelineProblem READ timelineProblem NOTIFY timelineChanged)

public:
    /// What it is made of; all of it outlives the object.
    struct Parts {
        SessionViewModel& session;
        BriefingServiceProtocol& briefings;
        HandoffWindowController& handoffWindowController;
        WebBrowser& browser;
        DateStyle dates;
    };

    explicit CompanyDossier(Parts parts, QObject* parent = nullptr);

    /// Forgets the brief alone.
    void forgetBrief() { setBrief(std::nullopt); }
    /// Forgets all that was loaded, and of which company it was.
    void clear();

    // MARK: - Brief

    /// Forgets all that was loaded before.
    void loadBrief(const ResolvedCompany& company);
    /// The company whose brief has come last.
    [[nodiscard]] const std::optional<ResolvedCompany>& selectedCompanyMatch() const { return m_selectedCompanyMatch; }
    [[nodiscard]] const std::optional<SalesBrief>& companyBrief() const { return m_companyBrief; }
    /// Why the last load failed, whichever of the three it was.
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

    // MARK: - Handoff

    [[nodiscard]] bool homeHandoffExpanded() const { return m_homeHandoffExpanded; }
    /// Folds or unfolds the note. Unfolding loads it where there is none and there is a company.
    void toggleHandoff(const ResolvedCompany* company);
    void loadHomeHandoff(const ResolvedCompany& company);
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

    // MARK: - Timeline

    [[nodiscard]] bool homeTimelineExpanded() const { return m_homeTimelineExpanded; }
    /// As `toggleHandoff`, for the timeline.
    void toggleTimeline(const ResolvedCompany* company);
    void loadHomeTimeline(const ResolvedCompany& company);
    [[nodiscard]] const std::optional<TimelineResponse>& homeTimeline() const { return m_homeTimeline; }
    [[nodiscard]] bool isLoadingHomeTimeline() const { return m_isLoadingHomeTimeline; }
    [[nodiscard]] bool hasEvents() const;
    [[nodiscard]] QString eventCountText() const;
    [[nodiscard]] RowsModel* events() { return &m_events; }
    [[nodiscard]] QString timelineProblem() const;

Q_SIGNALS:
    void briefChanged();
    void handoffChanged();
    void timelineChanged();

private:
    struct Load;

    void setBrief(std::optional<SalesBrief> brief);
    void setBriefError(std::optional<QString> error);
    void setHandoff(std::optional<HandoffResponse> handoff);
    void setTimeline(std::optional<TimelineResponse> timeline);
    void forgetLoaded();
    /// `briefError` if it begins with `trouble`, which names what could not be loaded.
    [[nodiscard]] QString problemOf(const QString& trouble) const;
    void open(const std::optional<QString>& address);

    /// Asks with `fetch` and hands what comes to `keep`.
    template <typename Fetch, typename Keep>
    void start(Load load, Fetch fetch, Keep keep);
    /// Outlives the object where it must, and does nothing more then.
    template <typename Fetch, typename Keep>
    static QCoro::Task<void> run(QPointer<CompanyDossier> self, Load load, Fetch fetch, Keep keep);

    Parts m_parts;
    std::optional<ResolvedCompany> m_selectedCompanyMatch;
    std::optional<SalesBrief> m_companyBrief;
    bool m_isLoadingBrief = false;
    std::optional<HandoffResponse> m_homeHandoff;
    bool m_isLoadingHomeHandoff = false;
    bool m_homeHandoffExpanded = false;
    std::optional<TimelineResponse> m_homeTimeline;
    bool m_isLoadingHomeTimeline = false;
    bool m_homeTimelineExpanded = false;
    std::optional<QString> m_briefError;

    // What is shown of the above.
    QVariantList m_revenueFacts;
    QVariantList m_products;
    QVariantList m_contacts;
    RowsModel m_notes;
    RowsModel m_events;
};

}  // namespace corvellan
