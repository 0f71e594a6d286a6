#include <QPointer>

#include "AppDelegate.h"
#include "Base/Log.h"
#include "Shell/UpdateFeed.h"

using namespace Qt::StringLiterals;

namespace corvellan {

QCoro::Task<void> AppDelegate::checkForUpdateBadge() {
    const QPointer self{this};
    const auto url = updatefeed::url(m_environment.session.productionUrl);
    if (!url)
        co_return;
    const auto feed = co_await m_environment.session.http.send(updatefeed::request(*url), m_stop.get_token());
    if (!self)
        co_return;
    if (!feed) {
        shellLog(u"Update check failed: "_s + feed.error().errorDescription());
        co_return;
    }
    const QString feedVersion = updatefeed::shortVersionString(feed->body);
    const QString& runningVersion = m_environment.runningVersion;
    if (feedVersion.isEmpty() || !updatefeed::isUpdate(runningVersion, feedVersion))
        co_return;
    m_viewModel->setUpdateAvailable(true);
    shellLog(u"Update available: "_s + runningVersion + u" → "_s + feedVersion);
}

}  // namespace corvellan
