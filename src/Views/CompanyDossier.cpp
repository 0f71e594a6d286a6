#include "CompanyDossier.h"

#include <QClipboard>
#include <QGuiApplication>

#include "BriefText.h"
#include "HandoffStatistics.h"
#include "HandoffWindowController.h"
#include "Platform/WebBrowser.h"
#include "Services/Protocols/BriefingServiceProtocol.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr int timelineDays = 90;

const QString handoffTrouble = u"Handoff: "_s;
const QString timelineTrouble = u"Timeline: "_s;

CompanyQuery queryOf(const ResolvedCompany& company) {
    return {.company = company.name, .customerId = company.crmId, .hubspotId = company.hubspotId};
}

}  // namespace

/// What sets one load apart from the others.
struct CompanyDossier::Load {
    bool CompanyDossier::* isLoading;
    void (CompanyDossier::*changed)();
    QString trouble;  ///< What the reason of a failure begins with.
};

CompanyDossier::CompanyDossier(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_notes({"body", "caption"}),
      m_events({"symbol", "colorName", "title", "detail", "date"}) {}

void CompanyDossier::clear() {
    m_selectedCompanyMatch.reset();
    forgetLoaded();
}

template <typename Fetch, typename Keep>
void CompanyDossier::start(Load load, Fetch fetch, Keep keep) {
    static_cast<void>(
        CancellableTask::start([self = QPointer{this}, load, fetch, keep](std::stop_token) -> QCoro::Task<void> {
            co_await run(self, load, fetch, keep);
        }));
}

template <typename Fetch, typename Keep>
QCoro::Task<void> CompanyDossier::run(QPointer<CompanyDossier> self, Load load, Fetch fetch, Keep keep) {
    if (!self)
        co_return;
    (*self).*load.isLoading = true;
    Q_EMIT((*self).*load.changed)();
    const auto token = co_await self->m_parts.session.authToken();
    if (!self)
        co_return;
    if (token) {
        auto answer = co_await fetch(self->m_parts.briefings, *token);
        if (!self)
            co_return;
        if (answer)
            keep(*self, std::move(*answer));
        else
            self->setBriefError(load.trouble + answer.error().errorDescription());
    }
    (*self).*load.isLoading = false;
    Q_EMIT((*self).*load.changed)();
}

void CompanyDossier::setBrief(std::optional<SalesBrief> brief) {
    m_companyBrief = std::move(brief);
    const SalesBrief shown = m_companyBrief.value_or(SalesBrief{});
    m_revenueFacts = brief::revenue(shown);
    m_products = brief::products(shown);
    m_contacts = brief::contacts(shown);
    m_notes.assign(brief::notes(shown, m_parts.dates));
    Q_EMIT briefChanged();
}

void CompanyDossier::setBriefError(std::optional<QString> error) {
    m_briefError = std::move(error);
    Q_EMIT briefChanged();
    Q_EMIT handoffChanged();
    Q_EMIT timelineChanged();
}

void CompanyDossier::setHandoff(std::optional<HandoffResponse> handoff) {
    m_homeHandoff = std::move(handoff);
    Q_EMIT handoffChanged();
}

void CompanyDossier::setTimeline(std::optional<TimelineResponse> timeline) {
    m_homeTimeline = std::move(timeline);
    m_events.assign(m_homeTimeline ? brief::events(*m_homeTimeline, m_parts.dates)
                                   : std::vector<FixedRowsModel::Row>{});
    Q_EMIT timelineChanged();
}

void CompanyDossier::forgetLoaded() {
    m_homeHandoffExpanded = false;
    m_homeTimelineExpanded = false;
    setBrief(std::nullopt);
    setHandoff(std::nullopt);
    setTimeline(std::nullopt);
    setBriefError(std::nullopt);
}

// MARK: - Brief

void CompanyDossier::loadBrief(const ResolvedCompany& company) {
    forgetLoaded();
    start(
        Load{&CompanyDossier::m_isLoadingBrief, &CompanyDossier::briefChanged, {}},
        [query = queryOf(company)](BriefingServiceProtocol& briefings, const QString& token) {
            return briefings.fetchBrief(token, query);
        },
        [company](CompanyDossier& self, SalesBrief brief) {
            self.setBrief(std::move(brief));
            self.m_selectedCompanyMatch = company;
        });
}

QString CompanyDossier::briefProblem() const {
    return m_companyBrief || m_isLoadingBrief ? QString{} : m_briefError.value_or(QString{});
}

QString CompanyDossier::briefRemark() const {
    const bool isEmpty = m_revenueFacts.isEmpty() && m_products.isEmpty() && m_contacts.isEmpty() &&
                         m_notes.rowCount() == 0 && !hasCrmLink() && !hasHubspotLink();
    return m_companyBrief && isEmpty ? m_companyBrief->error.value_or(QString{}) : QString{};
}

QString CompanyDossier::notesTitle() const {
    const int count = m_notes.rowCount();
    return count == 0 ? QString{} : u"Notes (%1)"_s.arg(count);
}

bool CompanyDossier::hasCrmLink() const {
    return m_companyBrief && m_companyBrief->links && brief::page(m_companyBrief->links->crm);
}

bool CompanyDossier::hasHubspotLink() const {
    return m_companyBrief && m_companyBrief->links && brief::page(m_companyBrief->links->hubspot);
}

void CompanyDossier::openCrm() {
    if (hasCrmLink())
        open(m_companyBrief->links->crm);
}

void CompanyDossier::openHubspot() {
    if (hasHubspotLink())
        open(m_companyBrief->links->hubspot);
}

void CompanyDossier::open(const std::optional<QString>& address) {
    static_cast<void>(CancellableTask::start(
        [&browser = m_parts.browser, page = brief::page(address).value()](std::stop_token) -> QCoro::Task<void> {
            // Nothing here reports a failure.
            static_cast<void>(co_await browser.open(page));
        }));
}

// MARK: - Handoff

void CompanyDossier::toggleHandoff(const ResolvedCompany* company) {
    m_homeHandoffExpanded = !m_homeHandoffExpanded;
    Q_EMIT handoffChanged();
    if (company && m_homeHandoffExpanded && !m_homeHandoff && !m_isLoadingHomeHandoff)
        loadHomeHandoff(*company);
}

void CompanyDossier::loadHomeHandoff(const ResolvedCompany& company) {
    start(
        Load{&CompanyDossier::m_isLoadingHomeHandoff, &CompanyDossier::handoffChanged, handoffTrouble},
        [query = queryOf(company)](BriefingServiceProtocol& briefings, const QString& token) {
            return briefings.fetchHandoff(token, query);
        },
        [](CompanyDossier& self, HandoffResponse handoff) {
            self.m_parts.session.setCachedHandoff(handoff);
            self.setHandoff(std::move(handoff));
        });
}

QVariantList CompanyDossier::handoffStatistics() const {
    QVariantList rows;
    if (m_homeHandoff)
        for (const HandoffStatistic& statistic : corvellan::handoffStatistics(m_homeHandoff->meta))
            rows.append(QVariantMap{{u"symbol"_s, statistic.symbol}, {u"text"_s, statistic.text}});
    return rows;
}

QString CompanyDossier::handoffNote() const {
    return m_homeHandoff ? m_homeHandoff->handoffNote : QString{};
}

QString CompanyDossier::handoffProblem() const {
    return m_homeHandoff || m_isLoadingHomeHandoff ? QString{} : problemOf(handoffTrouble);
}

void CompanyDossier::copyHandoff() const {
    if (m_homeHandoff)
        QGuiApplication::clipboard()->setText(m_homeHandoff->handoffNote);
}

void CompanyDossier::openHandoffWindow() {
    if (m_homeHandoff)
        m_parts.handoffWindowController.show(*m_homeHandoff);
}

void CompanyDossier::openNoteLink(const QString& address) {
    static_cast<void>(CancellableTask::start(
        [&browser = m_parts.browser, contact = QUrl{address}](std::stop_token) -> QCoro::Task<void> {
            // Nothing here reports a failure.
            static_cast<void>(co_await browser.openContact(contact));
        }));
}

// MARK: - Timeline

void CompanyDossier::toggleTimeline(const ResolvedCompany* company) {
    m_homeTimelineExpanded = !m_homeTimelineExpanded;
    Q_EMIT timelineChanged();
    if (company && m_homeTimelineExpanded && !m_homeTimeline && !m_isLoadingHomeTimeline)
        loadHomeTimeline(*company);
}

void CompanyDossier::loadHomeTimeline(const ResolvedCompany& company) {
    start(
        Load{&CompanyDossier::m_isLoadingHomeTimeline, &CompanyDossier::timelineChanged, timelineTrouble},
        [companyId = company.hubspotId](BriefingServiceProtocol& briefings, const QString& token) {
            return briefings.fetchTimeline(token, companyId, std::nullopt, timelineDays);
        },
        [](CompanyDossier& self, TimelineResponse timeline) { self.setTimeline(std::move(timeline)); });
}

bool CompanyDossier::hasEvents() const {
    return m_homeTimeline && !m_homeTimeline->timeline.empty() && !m_isLoadingHomeTimeline;
}

QString CompanyDossier::eventCountText() const {
    return m_homeTimeline ? QString::number(m_homeTimeline->timeline.size()) : QString{};
}

QString CompanyDossier::timelineProblem() const {
    return m_homeTimeline || m_isLoadingHomeTimeline ? QString{} : problemOf(timelineTrouble);
}

QString CompanyDossier::problemOf(const QString& trouble) const {
    return m_briefError && m_briefError->startsWith(trouble) ? *m_briefError : QString{};
}

}  // namespace corvellan
