#include "IdleView.h"

#include <QUrl>

#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

IdleView::IdleView(SessionViewModel& session, QObject* parent) : QObject(parent), m_session(session) {
    connect(&session, &SessionViewModel::statusTextChanged, this, &IdleView::statusTextChanged);
    connect(&session, &SessionViewModel::errorMessageChanged, this, &IdleView::errorMessageChanged);
    connect(&session, &SessionViewModel::lastSummaryChanged, this, &IdleView::lastCallTextChanged);
    connect(&session, &SessionViewModel::serverURLChanged, this, &IdleView::serverTextChanged);
}

QString IdleView::productName() {
    return u"Corvellan Bram"_s;
}

QString IdleView::statusText() const {
    return m_session.statusText();
}

bool IdleView::canStart() const {
    return !m_session.isReachingServer();
}

QString IdleView::errorMessage() const {
    return m_session.errorMessage().value_or(QString{});
}

QString IdleView::lastCallText() const {
    const auto& summary = m_session.lastSummary();
    return summary ? lastCall(*summary) : QString{};
}

QString IdleView::serverText() const {
    return server(m_session.serverURL(), m_session.isLocalServer());
}

void IdleView::startCoaching() {
    if (canStart())
        m_session.startSession();
}

QString IdleView::lastCall(const SummaryPayload& summary) {
    constexpr std::uint64_t secondsPerMinute = 60;
    return u"Last call: %1m %2s, %3/%4"_s.arg(summary.durationSecs / secondsPerMinute)
        .arg(summary.durationSecs % secondsPerMinute)
        .arg(summary.meddic.score())
        .arg(meddicCriteria);
}

QString IdleView::server(const QString& url, bool isLocal) {
    QUrl parsed{url};
    parsed.setUserInfo({});
    QString address = parsed.authority();
    if (address.isEmpty())
        address = url;
    return isLocal ? u"Local server, "_s + address : u"Server: "_s + address;
}

}  // namespace corvellan
