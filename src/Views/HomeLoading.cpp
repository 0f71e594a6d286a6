// What the home screen loads for the company that is unfolded.

#include "BriefText.h"
#include "HomeView.h"
#include "Services/Protocols/BriefingServiceProtocol.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr int timelineDays = 90;

CompanyQuery queryOf(const ResolvedCompany& company) {
    return {.company = company.name, .customerId = company.crmId, .hubspotId = company.hubspotId};
}

}  // namespace

void HomeView::setBrief(std::optional<SalesBrief> brief) {
    m_companyBrief = std::move(brief);
    const SalesBrief shown = m_companyBrief.value_or(SalesBrief{});
    m_revenueFacts = brief::revenue(shown);
    m_products = brief::products(shown);
    m_contacts = brief::contacts(shown);
    m_notes.assign(brief::notes(shown, m_parts.dates));
    Q_EMIT briefChanged();
}

void HomeView::setBriefError(std::optional<QString> error) {
    m_briefError = std::move(error);
    Q_EMIT briefChanged();
    Q_EMIT handoffChanged();
    Q_EMIT timelineChanged();
}

void HomeView::setHandoff(std::optional<HandoffResponse> handoff) {
    m_homeHandoff = std::move(handoff);
    Q_EMIT handoffChanged();
}

void HomeView::setTimeline(std::optional<TimelineResponse> timeline) {
    m_homeTimeline = std::move(timeline);
    m_events.assign(m_homeTimeline ? brief::events(*m_homeTimeline, m_parts.dates)
                                   : std::vector<FixedRowsModel::Row>{});
    Q_EMIT timelineChanged();
}

void HomeView::forgetLoaded() {
    m_homeHandoffExpanded = false;
    m_homeTimelineExpanded = false;
    setBrief(std::nullopt);
    setHandoff(std::nullopt);
    setTimeline(std::nullopt);
    setBriefError(std::nullopt);
}

void HomeView::loadBrief(const ResolvedCompany& company) {
    forgetLoaded();
    static_cast<void>(CancellableTask::start(
        [self = Self{this}, company](std::stop_token) -> QCoro::Task<void> { co_await fetchBrief(self, company); }));
}

QCoro::Task<void> HomeView::fetchBrief(Self self, ResolvedCompany company) {
    if (!self)
        co_return;
    self->m_isLoadingBrief = true;
    Q_EMIT self->briefChanged();
    const auto token = co_await self->m_parts.session.authToken();
    if (!self)
        co_return;
    if (token) {
        auto answer = co_await self->m_parts.briefings.fetchBrief(*token, queryOf(company));
        if (!self)
            co_return;
        if (answer) {
            self->setBrief(std::move(*answer));
            self->m_selectedCompanyMatch = company;
        } else {
            self->setBriefError(answer.error().errorDescription());
        }
    }
    self->m_isLoadingBrief = false;
    Q_EMIT self->briefChanged();
}

void HomeView::loadHomeHandoff(const ResolvedCompany& company) {
    static_cast<void>(CancellableTask::start(
        [self = Self{this}, company](std::stop_token) -> QCoro::Task<void> { co_await fetchHandoff(self, company); }));
}

QCoro::Task<void> HomeView::fetchHandoff(Self self, ResolvedCompany company) {
    if (!self)
        co_return;
    self->m_isLoadingHomeHandoff = true;
    Q_EMIT self->handoffChanged();
    const auto token = co_await self->m_parts.session.authToken();
    if (!self)
        co_return;
    if (token) {
        auto answer = co_await self->m_parts.briefings.fetchHandoff(*token, queryOf(company));
        if (!self)
            co_return;
        if (answer) {
            self->m_parts.session.setCachedHandoff(*answer);
            self->setHandoff(std::move(*answer));
        } else {
            self->setBriefError(u"Handoff: "_s + answer.error().errorDescription());
        }
    }
    self->m_isLoadingHomeHandoff = false;
    Q_EMIT self->handoffChanged();
}

void HomeView::loadHomeTimeline(const ResolvedCompany& company) {
    static_cast<void>(CancellableTask::start(
        [self = Self{this}, company](std::stop_token) -> QCoro::Task<void> { co_await fetchTimeline(self, company); }));
}

QCoro::Task<void> HomeView::fetchTimeline(Self self, ResolvedCompany company) {
    if (!self)
        co_return;
    self->m_isLoadingHomeTimeline = true;
    Q_EMIT self->timelineChanged();
    const auto token = co_await self->m_parts.session.authToken();
    if (!self)
        co_return;
    if (token) {
        auto answer =
            co_await self->m_parts.briefings.fetchTimeline(*token, company.hubspotId, std::nullopt, timelineDays);
        if (!self)
            co_return;
        if (answer)
            self->setTimeline(std::move(*answer));
        else
            self->setBriefError(u"Timeline: "_s + answer.error().errorDescription());
    }
    self->m_isLoadingHomeTimeline = false;
    Q_EMIT self->timelineChanged();
}

}  // namespace corvellan
