#include <sys/signalfd.h>
#include <unistd.h>
#include <csignal>

#include <QApplication>

#include "Base/Deployment.h"
#include "CorvellanMain.h"
#include "SingleInstance.h"
#include "Views/QuickSetup.h"

using namespace Qt::StringLiterals;

namespace {

/// A descriptor that becomes readable when the desktop or the user asks the process to end. The
/// signals are blocked in every thread, which is why this comes before the first of them.
int blockAndWatchEndSignals() {
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&ends, signal);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    return signalfd(-1, &ends, SFD_NONBLOCK | SFD_CLOEXEC);
}

}  // namespace

int main(int argc, char** argv) {
    const auto launchedAt = std::chrono::steady_clock::now();
    const int endSignals = blockAndWatchEndSignals();
    // On Wayland a program can neither place nor raise its windows; through XWayland it can do both.
    const bool isPlatformOurChoice = qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (isPlatformOurChoice)
        qputenv("QT_QPA_PLATFORM", "xcb;wayland");
    QApplication application{argc, argv};
    // The user's browser and settings, which are started from here, choose for themselves.
    if (isPlatformOurChoice)
        qunsetenv("QT_QPA_PLATFORM");
    QApplication::setApplicationName(u"Corvellan Bram"_s);
    QApplication::setApplicationVersion(corvellan::deployment::version());
    QApplication::setDesktopFileName(corvellan::SingleInstance::name);
    // The panel is hidden, never closed; the program ends on request alone.
    QApplication::setQuitOnLastWindowClosed(false);
    corvellan::prepareQuick();

    const int status = corvellan::CorvellanMain{launchedAt, endSignals}.run();
    ::close(endSignals);
    return status;
}
