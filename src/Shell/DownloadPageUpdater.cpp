#include "DownloadPageUpdater.h"

#include <utility>

#include "Base/Tasks.h"
#include "Platform/Alerts.h"
#include "Platform/WebBrowser.h"

namespace corvellan {

using namespace Qt::StringLiterals;

struct DownloadPageUpdater::State {
    WebBrowser& browser;
    AlertPresenter& alerts;
    QUrl page;
    bool isTelling = false;

    static QCoro::Task<void> showPage(std::shared_ptr<State> self) {
        const auto opened = co_await self->browser.open(self->page);
        // Who pressed several times is told once.
        if (opened || std::exchange(self->isTelling, true))
            co_return;
        Alert alert{
            .messageText = u"The download page could not be opened"_s,
            .informativeText = u"%1\n\nNew versions are at:\n%2"_s.arg(opened.error().errorDescription(),
                                                                       self->page.toDisplayString()),
            .buttonTitles = {u"OK"_s},
        };
        co_await self->alerts.runModal(std::move(alert));
        self->isTelling = false;
    }
};

DownloadPageUpdater::DownloadPageUpdater(WebBrowser& browser, AlertPresenter& alerts, QUrl page)
    : m_state(std::make_shared<State>(State{.browser = browser, .alerts = alerts, .page = std::move(page)})) {}

void DownloadPageUpdater::checkForUpdates() {
    static_cast<void>(CancellableTask::start([state = m_state](std::stop_token) { return State::showPage(state); }));
}

}  // namespace corvellan
