#include <sys/signalfd.h>
#include <unistd.h>
#include <csignal>

#include <QGuiApplication>
#include <QSocketNotifier>

#include "AppDelegate.h"
#include "Base/Deployment.h"
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
    QGuiApplication application{argc, argv};
    QGuiApplication::setApplicationName(u"corvellan-bram"_s);
    QGuiApplication::setApplicationDisplayName(u"Corvellan Bram"_s);
    QGuiApplication::setApplicationVersion(corvellan::deployment::version());
    QGuiApplication::setDesktopFileName(u"com.teskara.CorvellanBram"_s);
    // The panel is hidden, never closed; the program ends on request alone.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    corvellan::prepareQuick();

    corvellan::AppDelegate delegate{launchedAt};
    QSocketNotifier notifier{endSignals, QSocketNotifier::Read};
    QObject::connect(&notifier, &QSocketNotifier::activated, &delegate, [&delegate] { delegate.quit(); });
    delegate.applicationDidFinishLaunching();
    const int status = QGuiApplication::exec();
    ::close(endSignals);
    return status;
}
