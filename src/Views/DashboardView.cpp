#include "DashboardView.h"

#include <algorithm>
#include <QUrl>
#include <QVariantMap>

#include "Base/Preferences.h"
#include "Models/Types.h"
#include "Platform/WebBrowser.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array signedOutTabs{SidebarTab::home, SidebarTab::settings};

}  // namespace

DashboardView::DashboardView(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_showOnboarding(!m_parts.preferences.boolean(u"onboardingCompleted"_s).value_or(false)),
      m_hadSummary(m_parts.session.lastSummary().has_value()),
      m_modes({"symbol", "label", "accent", "isSelected"}, static_cast<int>(audienceTypeRows.size())) {
    const SessionViewModel* const session = &m_parts.session;
    connect(session, &SessionViewModel::isSessionActiveChanged, this, &DashboardView::faceChanged);
    connect(session, &SessionViewModel::isSessionActiveChanged, this, &DashboardView::surfaceChanged);
    connect(session, &SessionViewModel::isStealthEnabledChanged, this, &DashboardView::surfaceChanged);
    connect(session, &SessionViewModel::sessionModeChanged, this, &DashboardView::surfaceChanged);
    connect(&m_parts.theme, &Theme::schemeChanged, this, &DashboardView::surfaceChanged);
    connect(session, &SessionViewModel::userEmailChanged, this, &DashboardView::visibleTabsChanged);
    connect(session, &SessionViewModel::userEmailChanged, this, &DashboardView::faceChanged);
    connect(session, &SessionViewModel::serverURLChanged, this, &DashboardView::visibleTabsChanged);
    connect(session, &SessionViewModel::coachingModeChanged, this, &DashboardView::updateModes);
    connect(session, &SessionViewModel::updateAvailableChanged, this, &DashboardView::updateChanged);
    connect(session, &SessionViewModel::requestedTabChanged, this, &DashboardView::followRequest);
    connect(session, &SessionViewModel::lastSummaryChanged, this, &DashboardView::followSummary);
    updateModes();
}

QString DashboardView::face() const {
    if (m_parts.session.isSessionActive())
        return u"session"_s;
    return m_showOnboarding && m_parts.session.userEmail() ? u"onboarding"_s : u"main"_s;
}

void DashboardView::completeOnboarding() {
    m_showOnboarding = false;
    Q_EMIT faceChanged();
}

QColor DashboardView::surfaceColor() const {
    if (!m_parts.session.isSessionActive())
        return m_parts.theme.windowBackground();
    QColor surface = Theme::black();
    surface.setAlphaF(m_parts.session.isStealthEnabled() ? 0.6F : 0.9F);
    return surface;
}

int DashboardView::surfaceRadius() const {
    if (!m_parts.session.isSessionActive())
        return 0;
    return m_parts.session.sessionMode() == QLatin1StringView{"mini"} ? 6 : 10;
}

void DashboardView::select(SidebarTab tab) {
    if (m_selectedTab == tab)
        return;
    m_selectedTab = tab;
    Q_EMIT selectedTabChanged();
}

std::vector<SidebarTab> DashboardView::visibleTabs() const {
    std::vector<SidebarTab> tabs;
    for (const SidebarTabRow& row : sidebarTabRows)
        if (isOpenToUser() || std::ranges::find(signedOutTabs, row.value) != signedOutTabs.end())
            tabs.push_back(row.value);
    return tabs;
}

QVariantList DashboardView::visibleTabRows() const {
    QVariantList rows;
    for (const SidebarTab tab : visibleTabs()) {
        const SidebarTabRow& row = rowOf(sidebarTabRows, tab);
        rows.push_back(QVariantMap{
            {u"name"_s, tableText(row.raw)}, {u"title"_s, tableText(row.title)}, {u"symbol"_s, tableText(row.icon)}});
    }
    return rows;
}

QString DashboardView::selectedTabName() const {
    return tableText(rowOf(sidebarTabRows, m_selectedTab).raw);
}

bool DashboardView::isOpenToUser() const {
    return m_parts.session.userEmail() || m_parts.session.isLocalServer();
}

QString DashboardView::sidebarUsername() const {
    return userEmail().section(u'@', 0, 0);
}

QString DashboardView::userEmail() const {
    return m_parts.session.userEmail().value_or(QString{});
}

bool DashboardView::canLogin() const {
    return !isOpenToUser();
}

bool DashboardView::isUpdateAvailable() const {
    return m_parts.session.updateAvailable();
}

QString DashboardView::versionText() const {
    return m_parts.version.isEmpty() ? QString{} : u"v"_s + m_parts.version;
}

void DashboardView::selectTab(const QString& name) {
    if (const auto tab = valueOf(sidebarTabRows, name.toStdString()))
        select(*tab);
}

void DashboardView::chooseMode(int row) {
    if (row >= 0 && row < static_cast<int>(audienceTypeRows.size()))
        m_parts.session.setCoachingMode(audienceTypeRows.at(static_cast<std::size_t>(row)).value);
}

void DashboardView::openChat() {
    static_cast<void>(m_parts.browser.open(QUrl{m_parts.chatUrl}));
}

void DashboardView::login() {
    if (canLogin())
        m_parts.session.login();
}

void DashboardView::logout() {
    if (m_parts.session.userEmail())
        m_parts.session.logoutAction();
}

void DashboardView::checkForUpdates() {
    if (UpdaterProtocol* const updater = m_parts.session.sparkleUpdater())
        updater->checkForUpdates();
}

void DashboardView::updateModes() {
    std::vector<FixedRowsModel::Row> rows;
    for (const AudienceTypeRow& row : audienceTypeRows)
        rows.push_back({tableText(row.icon), tableText(row.label), paint(row.accentColor),
                        row.value == m_parts.session.coachingMode()});
    m_modes.assign(rows);
}

void DashboardView::followRequest() {
    auto request = m_parts.session.requestedTab();
    if (!request || request->isEmpty())
        return;
    (*request)[0] = request->at(0).toUpper();
    const auto row = std::ranges::find_if(
        sidebarTabRows, [&](const SidebarTabRow& candidate) { return *request == tableText(candidate.title); });
    if (row == sidebarTabRows.end())
        return;
    select(row->value);
    m_parts.session.setRequestedTab(std::nullopt);
}

void DashboardView::followSummary() {
    const bool hasSummary = m_parts.session.lastSummary().has_value();
    if (hasSummary && !m_hadSummary)
        select(SidebarTab::history);
    m_hadSummary = hasSummary;
}

}  // namespace corvellan
