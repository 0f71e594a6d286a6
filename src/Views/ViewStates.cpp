#include "ViewStates.h"

#include <QStandardPaths>

#include "ViewModels/SessionViewModel.h"

namespace corvellan {

ViewStates::ViewStates(const Parts& parts, QObject* parent)
    : QObject(parent),
      m_dashboard({.session = parts.session,
                   .theme = m_theme,
                   .browser = parts.settings.browser,
                   .chatUrl = parts.settings.chatUrl,
                   .version = parts.settings.version}),
      m_live(parts.session, parts.handoffWindowController),
      m_overlay(parts.session, parts.handoffWindowController),
      m_idle(parts.session),
      m_history({.session = parts.session,
                 .debugLog = parts.session.environment().debugLog,
                 .detail = {.clock = parts.session.environment().clock,
                            .browser = parts.settings.browser,
                            .reportFolder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)}}),
      m_settings(parts.session, parts.preferences, parts.settings),
      m_stealth(parts.session, parts.captureHiding, parts.selfTest, parts.afterNextFrame) {}

}  // namespace corvellan
