#include "MainView.h"

#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

MainView::MainView(const SessionViewModel& session, QObject* parent) : QObject(parent), m_session(session) {
    connect(&session, &SessionViewModel::isSessionActiveChanged, this, &MainView::surfaceChanged);
    connect(&session, &SessionViewModel::isSessionActiveChanged, this, &MainView::isSessionActiveChanged);
    connect(&session, &SessionViewModel::isStealthEnabledChanged, this, &MainView::surfaceChanged);
    connect(&session, &SessionViewModel::sessionModeChanged, this, &MainView::surfaceChanged);
}

bool MainView::isSessionActive() const {
    return m_session.isSessionActive();
}

QColor MainView::surfaceColor() const {
    if (!m_session.isSessionActive())
        return Theme::windowBackground();
    QColor surface = Theme::black();
    surface.setAlphaF(m_session.isStealthEnabled() ? 0.6F : 0.9F);
    return surface;
}

int MainView::surfaceRadius() const {
    if (!m_session.isSessionActive())
        return 0;
    return m_session.sessionMode() == QLatin1StringView{"mini"} ? 6 : 10;
}

}  // namespace corvellan
