#pragma once

#include <array>
#include <QColor>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QVariantList>
#include <string_view>
#include <vector>

#include "FixedRowsModel.h"
#include "Models/EnumTable.h"

namespace corvellan {

class Preferences;
class SessionViewModel;
class Theme;
class WebBrowser;

/// What the sidebar leads to.
enum class SidebarTab { home, calendar, train, history, memory, guide, settings };

struct SidebarTabRow {
    SidebarTab value;
    std::string_view raw;
    std::string_view title;
    std::string_view icon;
};

inline constexpr std::array sidebarTabRows{
    SidebarTabRow{SidebarTab::home, "home", "Home", "waveform"},
    SidebarTabRow{SidebarTab::calendar, "calendar", "Calendar", "calendar"},
    SidebarTabRow{SidebarTab::train, "train", "Train", "figure.boxing"},
    SidebarTabRow{SidebarTab::history, "history", "History", "clock.arrow.circlepath"},
    SidebarTabRow{SidebarTab::memory, "memory", "Memory", "brain"},
    SidebarTabRow{SidebarTab::guide, "guide", "Guide", "book"},
    SidebarTabRow{SidebarTab::settings, "settings", "Settings", "gearshape"},
};

/// View state of the window's frame: which face it shows, on what surface, and what stands in the sidebar.
/// Main thread.
class DashboardView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// "session", "onboarding" or "main".
    Q_PROPERTY(QString face READ face NOTIFY faceChanged)
    Q_PROPERTY(QColor surfaceColor READ surfaceColor NOTIFY surfaceChanged)
    Q_PROPERTY(int surfaceRadius READ surfaceRadius NOTIFY surfaceChanged)

    /// Maps with "name", "title" and "symbol", in the order of the sidebar.
    Q_PROPERTY(QVariantList visibleTabs READ visibleTabRows NOTIFY visibleTabsChanged)
    /// The name of the tab that is open. It may be one that the sidebar does not show.
    Q_PROPERTY(QString selectedTab READ selectedTabName NOTIFY selectedTabChanged)
    /// There is somebody to coach, or nobody has to sign in.
    Q_PROPERTY(bool isOpenToUser READ isOpenToUser NOTIFY visibleTabsChanged)
    /// The coaching modes: "symbol", "label", "accent" and "isSelected".
    Q_PROPERTY(QAbstractItemModel* modes READ modes CONSTANT)

    /// Empty while nobody is signed in.
    Q_PROPERTY(QString sidebarUsername READ sidebarUsername NOTIFY visibleTabsChanged)
    Q_PROPERTY(QString userEmail READ userEmail NOTIFY visibleTabsChanged)
    Q_PROPERTY(bool canLogin READ canLogin NOTIFY visibleTabsChanged)
    Q_PROPERTY(bool isUpdateAvailable READ isUpdateAvailable NOTIFY updateChanged)
    /// "v" and the version; empty for a program without one.
    Q_PROPERTY(QString versionText READ versionText CONSTANT)

public:
    /// What it is made of; all of it outlives the object.
    struct Parts {
        SessionViewModel& session;
        const Theme& theme;
        const Preferences& preferences;
        WebBrowser& browser;
        QString chatUrl;  ///< Where people open the chat back-end.
        QString version;  ///< The short version string; may be empty.
    };

    explicit DashboardView(Parts parts, QObject* parent = nullptr);

    [[nodiscard]] QString face() const;
    /// Opaque between calls; in a call black at 90 %, at 60 % while stealth is on.
    [[nodiscard]] QColor surfaceColor() const;
    [[nodiscard]] int surfaceRadius() const;

    /// Nobody has gone through it yet. It waits for a user who is signed in.
    [[nodiscard]] bool showOnboarding() const { return m_showOnboarding; }
    void completeOnboarding();

    [[nodiscard]] SidebarTab selectedTab() const { return m_selectedTab; }
    void select(SidebarTab tab);
    [[nodiscard]] std::vector<SidebarTab> visibleTabs() const;
    [[nodiscard]] bool isOpenToUser() const;
    [[nodiscard]] FixedRowsModel* modes() { return &m_modes; }
    /// The user's address up to its first "@".
    [[nodiscard]] QString sidebarUsername() const;
    [[nodiscard]] QString userEmail() const;
    [[nodiscard]] bool canLogin() const;
    [[nodiscard]] bool isUpdateAvailable() const;
    [[nodiscard]] QString versionText() const;

    /// By its name; one that names no tab changes nothing.
    Q_INVOKABLE void selectTab(const QString& name);
    /// \param row of `modes`.
    Q_INVOKABLE void chooseMode(int row);
    Q_INVOKABLE void openChat();
    Q_INVOKABLE void login();
    /// Signs out without asking.
    Q_INVOKABLE void logout();
    Q_INVOKABLE void checkForUpdates();

Q_SIGNALS:
    void faceChanged();
    void surfaceChanged();
    void visibleTabsChanged();
    void selectedTabChanged();
    void updateChanged();

private:
    [[nodiscard]] QVariantList visibleTabRows() const;
    [[nodiscard]] QString selectedTabName() const;
    void updateModes();
    /// Opens the requested tab and clears the request. One that names none stays.
    void followRequest();
    void followSummary();

    Parts m_parts;
    SidebarTab m_selectedTab = SidebarTab::home;
    bool m_showOnboarding;
    bool m_hadSummary = false;
    FixedRowsModel m_modes;
};

}  // namespace corvellan
