#include "ViewStates.h"

#include <algorithm>
#include <QStandardPaths>
#include <utility>

#include "ViewModels/SessionViewModel.h"

namespace corvellan {

ViewStates::ViewStates(const ViewParts& parts, StealthView::AfterNextFrame afterNextFrame, QObject* parent)
    : QObject(parent),
      m_dashboard({.session = parts.session,
                   .theme = m_theme,
                   .preferences = parts.preferences,
                   .browser = parts.settings.browser,
                   .chatUrl = parts.settings.chatUrl,
                   .version = parts.settings.version}),
      m_live(parts.session, parts.handoffWindowController),
      m_overlay(parts.session, parts.handoffWindowController),
      m_home({.session = parts.session,
              .briefings = parts.session.environment().briefings,
              .handoffWindowController = parts.handoffWindowController,
              .clock = parts.session.environment().clock,
              .browser = parts.settings.browser}),
      m_calendar(parts.session, m_home),
      m_training(parts.session, parts.session.environment().http),
      m_history({.session = parts.session,
                 .debugLog = parts.session.environment().debugLog,
                 .detail = {.clock = parts.session.environment().clock,
                            .browser = parts.settings.browser,
                            .reportFolder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)}}),
      m_memory(parts.session.environment().clock, parts.memoryFile),
      m_onboarding({.viewModel = parts.session,
                    .preferences = parts.preferences,
                    .permissions = parts.settings.permissions,
                    .systemSettings = parts.settings.systemSettings,
                    .onComplete = [this] { m_dashboard.completeOnboarding(); }}),
      m_settings(parts.session, parts.preferences, parts.settings),
      m_stealth(parts.session, parts.captureHiding, parts.selfTest, std::move(afterNextFrame)) {
    connect(&m_home, &HomeView::historyRequested, &m_dashboard, [this] {
        const auto tabs = m_dashboard.visibleTabs();
        if (std::ranges::find(tabs, SidebarTab::history) != tabs.end())
            m_dashboard.select(SidebarTab::history);
    });
}

}  // namespace corvellan
