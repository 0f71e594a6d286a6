#pragma once

#include <QObject>
#include <QQmlEngine>

#include "CalendarView.h"
#include "CoachingOverlayView.h"
#include "DashboardView.h"
#include "GuideView.h"
#include "HomeView.h"
#include "LiveSessionView.h"
#include "MemoryView.h"
#include "OnboardingView.h"
#include "SessionHistoryView.h"
#include "SettingsView.h"
#include "StealthView.h"
#include "Theme.h"
#include "Training/ScenarioPickerView.h"
#include "ViewParts.h"

namespace corvellan {

/// The view states of the window's screens, under one roof: what the window's content is handed. Main thread.
class ViewStates : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    Q_PROPERTY(corvellan::DashboardView* dashboard READ dashboard CONSTANT)
    Q_PROPERTY(corvellan::LiveSessionView* live READ live CONSTANT)
    Q_PROPERTY(corvellan::CoachingOverlayView* overlay READ overlay CONSTANT)
    Q_PROPERTY(corvellan::HomeView* home READ home CONSTANT)
    Q_PROPERTY(corvellan::CalendarView* calendar READ calendar CONSTANT)
    Q_PROPERTY(corvellan::ScenarioPickerView* training READ training CONSTANT)
    Q_PROPERTY(corvellan::SessionHistoryView* history READ history CONSTANT)
    Q_PROPERTY(corvellan::MemoryView* memory READ memory CONSTANT)
    Q_PROPERTY(corvellan::GuideView* guide READ guide CONSTANT)
    Q_PROPERTY(corvellan::OnboardingView* onboarding READ onboarding CONSTANT)
    Q_PROPERTY(corvellan::SettingsView* settings READ settings CONSTANT)
    Q_PROPERTY(corvellan::StealthView* stealth READ stealth CONSTANT)
    Q_PROPERTY(corvellan::Theme* theme READ theme CONSTANT)
    /// That of the call's panel, which is dark whatever the desktop is.
    Q_PROPERTY(corvellan::Theme* callTheme READ callTheme CONSTANT)

public:
    /// \param afterNextFrame the window's; without one it can't be looked for in captures.
    explicit ViewStates(const ViewParts& parts, StealthView::AfterNextFrame afterNextFrame = {},
                        QObject* parent = nullptr);

    [[nodiscard]] DashboardView* dashboard() { return &m_dashboard; }
    [[nodiscard]] LiveSessionView* live() { return &m_live; }
    [[nodiscard]] CoachingOverlayView* overlay() { return &m_overlay; }
    [[nodiscard]] HomeView* home() { return &m_home; }
    [[nodiscard]] CalendarView* calendar() { return &m_calendar; }
    [[nodiscard]] ScenarioPickerView* training() { return &m_training; }
    [[nodiscard]] SessionHistoryView* history() { return &m_history; }
    [[nodiscard]] MemoryView* memory() { return &m_memory; }
    [[nodiscard]] GuideView* guide() { return &m_guide; }
    [[nodiscard]] OnboardingView* onboarding() { return &m_onboarding; }
    [[nodiscard]] SettingsView* settings() { return &m_settings; }
    [[nodiscard]] StealthView* stealth() { return &m_stealth; }
    [[nodiscard]] Theme* theme() { return &m_theme; }
    [[nodiscard]] Theme* callTheme() { return &m_callTheme; }

private:
    Theme m_theme;
    Theme m_callTheme;
    DashboardView m_dashboard;
    LiveSessionView m_live;
    CoachingOverlayView m_overlay;
    HomeView m_home;
    CalendarView m_calendar;
    ScenarioPickerView m_training;
    SessionHistoryView m_history;
    MemoryView m_memory;
    GuideView m_guide;
    OnboardingView m_onboarding;
    SettingsView m_settings;
    StealthView m_stealth;
};

}  // namespace corvellan
