#include "ViewStates.h"

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
      m_settings(parts.session, parts.preferences, parts.settings),
      m_stealth(parts.session, parts.captureHiding, parts.selfTest, parts.afterNextFrame) {}

}  // namespace corvellan
