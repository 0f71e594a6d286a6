#include "HandoffWindowView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <utility>

#include "Base/Tasks.h"
#include "HandoffStatistics.h"
#include "Platform/WebBrowser.h"

namespace corvellan {

using namespace Qt::StringLiterals;

std::optional<QUrl> CrmAddress::companyPage(const std::optional<QString>& companyId) const {
    if (!companyId || companyId->isEmpty())
        return std::nullopt;
    QUrl page{url + u"/contacts/"_s + portal + u"/company/"_s + *companyId, QUrl::StrictMode};
    if (!page.isValid() || page.host().isEmpty())
        return std::nullopt;
    return page;
}

HandoffWindowView::HandoffWindowView(HandoffResponse handoff, WebBrowser& browser, const CrmAddress& crm,
                                     std::optional<Close> onClose, QObject* parent)
    : QObject(parent),
      m_handoff(std::move(handoff)),
      m_browser(browser),
      m_companyPage(crm.companyPage(m_handoff.meta ? m_handoff.meta->hubspotCompanyId : std::nullopt)),
      m_onClose(std::move(onClose)),
      m_statistics({"symbol", "text"}, static_cast<int>(handoffStatistics(m_handoff.meta).size())) {
    std::vector<FixedRowsModel::Row> rows;
    for (const HandoffStatistic& statistic : handoffStatistics(m_handoff.meta))
        rows.push_back({statistic.symbol, statistic.text});
    m_statistics.assign(rows);
}

void HandoffWindowView::openCompanyPage() {
    if (m_companyPage)
        open(*m_companyPage, Target::page);
}

void HandoffWindowView::copyNote() const {
    QGuiApplication::clipboard()->setText(m_handoff.handoffNote);
}

void HandoffWindowView::openLink(const QString& address) {
    open(QUrl{address}, Target::contact);
}

void HandoffWindowView::close() {
    if (!m_onClose)
        return;
    // It may take this object and the action with it.
    const Close action = *m_onClose;
    action();
}

void HandoffWindowView::open(const QUrl& address, Target target) {
    setNotice({});
    static_cast<void>([](QPointer<HandoffWindowView> self, QUrl address, Target target) -> QCoro::Task<void> {
        const auto opened = target == Target::page ? co_await self->m_browser.open(address)
                                                   : co_await self->m_browser.openContact(address);
        if (self && !opened)
            self->setNotice(opened.error().errorDescription());
    }(this, address, target));
}

void HandoffWindowView::setNotice(const QString& notice) {
    if (m_notice == notice)
        return;
    m_notice = notice;
    Q_EMIT noticeChanged();
}

}  // namespace corvellan
