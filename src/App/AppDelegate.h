#pragma once

#include <memory>
#include <QObject>

#include "Base/Clock.h"

namespace corvellan {

class SessionViewModel;
class StealthPanel;

/// Puts the program together and owns all of it: threads, services, the one session object, the one
/// panel. Main thread.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// Creates the services in their order and the session over them. Nothing is shown yet.
    ///
    /// \param launchedAt when `main` began, for the start-up figures.
    explicit AppDelegate(MonotonicTime launchedAt);
    ~AppDelegate() override;

    /// Opens the store, builds the panel and shows it.
    void applicationDidFinishLaunching();

    /// Ends a running session, waits until what it started is closed and stored (at most 2 seconds),
    /// then ends the event loop. Further calls do nothing.
    void quit();

private:
    void openStore();
    void installCallbacks();
    void measureStartUp();
    void measureTips();

    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace corvellan
