#include "DesktopSettings.h"

#include <QProcess>
#include <QStandardPaths>

#include "Platform/Alerts.h"
#include "Platform/Linux/LetGoOfParent.h"
#include "SettingsChoice.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

QCoro::Task<void> explain(AlertPresenter& alerts, PrivacyPane pane) {
    Alert alert{.messageText = u"Open Your Sound Settings"_s,
                .informativeText = settingsExplanation(pane),
                .buttonTitles = {u"OK"_s}};
    co_await alerts.runModal(std::move(alert));
}

}  // namespace

void DesktopSettings::openPrivacyPane(PrivacyPane pane) {
    const auto isInstalled = [](const QString& program) { return !QStandardPaths::findExecutable(program).isEmpty(); };
    const auto choice = settingsProgram(qEnvironmentVariable("XDG_CURRENT_DESKTOP"), pane, isInstalled);
    if (!choice) {
        explain(m_alerts, pane);
        return;
    }
    QProcess process;
    process.setProgram(choice->program);
    process.setArguments(choice->arguments);
    process.setChildProcessModifier(letGoOfParent);
    process.startDetached();
}

}  // namespace corvellan
