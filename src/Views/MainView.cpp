#include "MainView.h"

#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

MainView::MainView(SessionViewModel& session, const Theme& theme, QObject* parent)
    : QObject(parent),
      m_session(session),
      m_theme(theme) {
    connect(&session, &SessionViewModel::isSessionActiveChanged, this, &MainView::surfaceChanged);
    connect(&session, &SessionViewModel::isSessionActiveChanged, this, [this] {
        // After a call the user looks for what came of it.
        if (m_session.isSessionActive())
            m_tab = Tab::home;
        Q_EMIT faceChanged();
    });
    connect(&session, &SessionViewModel::isStealthEnabledChanged, this, &MainView::surfaceChanged);
    connect(&session, &SessionViewModel::sessionModeChanged, this, &MainView::surfaceChanged);
    connect(&session, &SessionViewModel::requestedTabChanged, this, &MainView::followRequest);
    connect(&theme, &Theme::schemeChanged, this, &MainView::surfaceChanged);
}

QString MainView::face() const {
    if (m_session.isSessionActive())
        return u"call"_s;
    return m_tab == Tab::settings ? u"settings"_s : u"home"_s;
}

QColor MainView::surfaceColor() const {
    if (!m_session.isSessionActive())
        return m_theme.windowBackground();
    QColor surface = Theme::black();
    surface.setAlphaF(m_session.isStealthEnabled() ? 0.6F : 0.9F);
    return surface;
}

int MainView::surfaceRadius() const {
    if (!m_session.isSessionActive())
        return 0;
    return m_session.sessionMode() == QLatin1StringView{"mini"} ? 6 : 10;
}

void MainView::setTab(Tab tab) {
    if (m_tab == tab)
        return;
    m_tab = tab;
    Q_EMIT faceChanged();
}

void MainView::followRequest() {
    const auto request = m_session.requestedTab();
    if (request == u"settings"_s)
        showSettings();
    else if (request == u"home"_s)
        showHome();
    else
        return;
    m_session.setRequestedTab(std::nullopt);
}

}  // namespace corvellan
