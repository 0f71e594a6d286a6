#include "TrayStatusBar.h"

#include <functional>
#include <optional>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

#include "Platform/Linux/Tray/TrayHosts.h"
#include "StatusIcon.h"
#include "TrayMenu.h"

namespace corvellan {

namespace {

enum class TrayKind { notifier, embedding };

}  // namespace

struct TrayStatusBar::Trays {
    /// Whether an icon can be made that will be seen. Qt looks for a host of the bus only once, when the
    /// first icon is made: one that was made too early would never reach it.
    bool choose() {
        if (!chosen && hosts.isNotifierHostKnown()) {
            if (hosts.hasNotifierHost())
                chosen = TrayKind::notifier;
            else if (hosts.hasEmbeddingTray())
                chosen = TrayKind::embedding;
        }
        return chosen.has_value();
    }

    TrayHosts hosts;
    /// As Qt has chosen by the same rule.
    std::optional<TrayKind> chosen;
};

namespace {

class TrayStatusItem final : public QObject, public StatusItem {
public:
    using HasTray = std::function<bool()>;

    TrayStatusItem(const TrayHosts& hosts, HasTray hasTray) : m_hasTray(std::move(hasTray)) {
        connect(&hosts, &TrayHosts::changed, this, &TrayStatusItem::appear);
        appear();
    }

    void setImage(const QString& symbol, const QString& accessibilityDescription) override {
        m_image = statusIcon(symbol);
        m_description = accessibilityDescription;
        if (m_icon)
            show();
    }

    void setMenu(std::vector<StatusMenuItem> menu) override {
        const auto old = std::exchange(m_menu, makeTrayMenu(menu));
        m_onActivated = menu.empty() ? std::function<void()>{} : std::move(menu.front().action);
        if (m_icon)
            m_icon->setContextMenu(m_menu.get());
    }

private:
    void appear() {
        if (m_icon || !m_hasTray())
            return;
        m_icon = std::make_unique<QSystemTrayIcon>();
        connect(m_icon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            if (const auto kept = m_onActivated; kept && reason == QSystemTrayIcon::Trigger)
                kept();
        });
        show();
    }

    void show() {
        m_icon->setIcon(m_image);
        m_icon->setToolTip(m_description);
        m_icon->setContextMenu(m_menu.get());
        m_icon->setVisible(!m_image.isNull());
    }

    HasTray m_hasTray;
    QIcon m_image;
    QString m_description;
    std::function<void()> m_onActivated;
    /// Outlives the icon, which shows it.
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

}  // namespace

TrayStatusBar::TrayStatusBar() : m_trays(std::make_unique<Trays>()) {}

TrayStatusBar::~TrayStatusBar() = default;

std::unique_ptr<StatusItem> TrayStatusBar::makeStatusItem() {
    if (!qobject_cast<QApplication*>(qApp) || !m_trays->hosts.arePossible())
        return nullptr;
    return std::make_unique<TrayStatusItem>(m_trays->hosts, [trays = m_trays.get()] { return trays->choose(); });
}

bool TrayStatusBar::isShown() const {
    const auto& hosts = m_trays->hosts;
    if (!m_trays->chosen)
        return hosts.hasNotifierHost() || hosts.hasEmbeddingTray();
    switch (*m_trays->chosen) {
    case TrayKind::notifier: return hosts.hasNotifierHost();
    case TrayKind::embedding: return hosts.hasEmbeddingTray();
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan
