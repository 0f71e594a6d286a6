#include <sys/eventfd.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QSocketNotifier>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "CommandLine.h"
#include "EventLog.h"
#include "Sandbox.h"

namespace {

using namespace Qt::StringLiterals;
using namespace corvellan;
using namespace corvellan::sandbox;

int endSignal = -1;

// Only what a signal handler may do.
void onSignal(int /*number*/) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(endSignal, &one, sizeof one);
}

void print(FILE* file, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
    std::fflush(file);
}

constexpr int failed = 1;
constexpr int misused = 2;

int serve(const ServeCommand& command) {
    EventLoopExecutor executor;
    SystemClock clock;
    const EventLog log{clock};
    const auto sandbox = Sandbox::start(command.options, clock, log);
    if (!sandbox) {
        print(stderr, u"corvellan-sandbox: %1\n"_s.arg(sandbox.error().errorDescription()));
        return failed;
    }

    endSignal = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    std::signal(SIGHUP, onSignal);
    QSocketNotifier notifier{endSignal, QSocketNotifier::Read};
    QObject::connect(&notifier, &QSocketNotifier::activated, qApp, [] { QCoreApplication::exit(0); });

    for (const auto& line : (*sandbox)->addressLines())
        log.plain(line);
    log.plain(u"ready"_s);
    log.event(u"start"_s, command.texts);
    const int status = QCoreApplication::exec();
    log.event(u"end"_s, u"%1 calls were held"_s.arg((*sandbox)->calls().calls().size()));
    return status;
}

int show(const std::expected<QString, QString>& result) {
    if (!result) {
        print(stderr, u"corvellan-sandbox: %1\n"_s.arg(result.error()));
        return failed;
    }
    print(stdout, *result);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    // It takes a WebSocket that was refused for a mistake of this program; the event log tells of it better.
    QLoggingCategory::setFilterRules(u"qt.httpserver.warning=false"_s);
    const auto command = parseCommandLine(QCoreApplication::arguments().sliced(1));
    if (!command) {
        print(stderr, u"corvellan-sandbox: %1 (--help tells more)\n"_s.arg(command.error()));
        return misused;
    }
    if (const auto* toServe = std::get_if<ServeCommand>(&*command))
        return serve(*toServe);
    if (const auto* script = std::get_if<ScriptCommand>(&*command))
        return show(run(*script));
    if (const auto* measure = std::get_if<MeasureCommand>(&*command))
        return show(run(*measure));
    if (const auto* extension = std::get_if<ExtensionCommand>(&*command))
        return show(run(*extension));
    print(stdout, std::get<HelpCommand>(*command).text);
    return 0;
}
