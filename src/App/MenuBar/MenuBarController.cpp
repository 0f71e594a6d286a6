#include "MenuBarController.h"

#include "App/Panel/StealthPanel.h"
#include "Platform/StatusBar.h"
#include "Services/Protocols/UpdaterProtocol.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

MenuBarController::MenuBarController(Parts parts)
    : m_viewModel(parts.viewModel),
      m_panel(parts.panel),
      m_activation(parts.activation),
      m_terminate(std::move(parts.terminate)) {
    setupStatusItem(parts.statusBar);
}

MenuBarController::~MenuBarController() = default;

void MenuBarController::setupStatusItem(StatusBar& statusBar) {
    m_statusItem = statusBar.makeStatusItem();
    if (!m_statusItem)
        return;
    m_statusItem->setImage(u"waveform"_s, u"Corvellan"_s);
    const StatusMenuItem separator;
    m_statusItem->setMenu({
        {.title = u"Show Main Window"_s, .key = u'o', .action = [this] { showWindow(); }},
        separator,
        {.title = u"Start Session"_s, .key = u's', .action = [this] { startSession(); }},
        {.title = u"Start Training"_s, .key = u't', .action = [this] { startTrainSession(); }},
        {.title = u"End Session"_s, .key = u'e', .action = [this] { endSession(); }},
        {.title = u"Toggle Stealth"_s, .key = {}, .action = [this] { toggleStealth(); }},
        separator,
        {.title = u"Check for Updates..."_s, .key = {}, .action = [this] { checkForUpdates(); }},
        separator,
        {.title = u"Quit Corvellan"_s, .key = u'q', .action = [this] { quit(); }},
    });
}

void MenuBarController::showWindow() {
    m_panel.bringToFront(m_activation);
}

void MenuBarController::startSession() {
    showWindow();
    // While another start is on its way, this one takes its place.
    m_viewModel.startSession();
}

void MenuBarController::startTrainSession() {
    showWindow();
    m_viewModel.setRequestedTab(u"train"_s);
}

void MenuBarController::endSession() {
    m_viewModel.endSession();
}

void MenuBarController::toggleStealth() {
    // The session passes every assignment on to `onStealthChanged` itself; a call from here would be a second.
    m_viewModel.setIsStealthEnabled(!m_viewModel.isStealthEnabled());
}

void MenuBarController::checkForUpdates() {
    if (auto* const updater = m_viewModel.sparkleUpdater())
        updater->checkForUpdates();
}

void MenuBarController::quit() {
    if (m_terminate)
        m_terminate();
}

}  // namespace corvellan
