#pragma once

#include <memory>
#include <QUrl>

#include "Services/Protocols/UpdaterProtocol.h"

namespace corvellan {

class AlertPresenter;
class WebBrowser;

/// Gets new versions where a package manager or the user installs them: it shows the page that has them. Where
/// no browser opens, an alert tells the address. Main thread.
class DownloadPageUpdater final : public UpdaterProtocol {
public:
    /// Browser and alerts outlive everything that was asked of it.
    DownloadPageUpdater(WebBrowser& browser, AlertPresenter& alerts, QUrl page);

    void checkForUpdates() override;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace corvellan
