#pragma once

#include <QColor>
#include <QObject>
#include <QQmlEngine>

namespace corvellan {

class SessionViewModel;
class Theme;

/// View state of the window's root: which face it shows, and on what surface.
class MainView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// "call", "home" or "settings".
    Q_PROPERTY(QString face READ face NOTIFY faceChanged)
    Q_PROPERTY(QColor surfaceColor READ surfaceColor NOTIFY surfaceChanged)
    Q_PROPERTY(int surfaceRadius READ surfaceRadius NOTIFY surfaceChanged)

public:
    /// Both outlive the object.
    MainView(SessionViewModel& session, const Theme& theme, QObject* parent = nullptr);

    [[nodiscard]] QString face() const;
    /// Opaque between calls; in a call black at 90 %, at 60 % while stealth is on.
    [[nodiscard]] QColor surfaceColor() const;
    [[nodiscard]] int surfaceRadius() const;

    Q_INVOKABLE void showHome() { setTab(Tab::home); }
    Q_INVOKABLE void showSettings() { setTab(Tab::settings); }

Q_SIGNALS:
    void faceChanged();
    void surfaceChanged();

private:
    /// What is shown between calls.
    enum class Tab { home, settings };

    void setTab(Tab tab);
    /// Shows the requested tab and clears the request. One that names none stays.
    void followRequest();

    SessionViewModel& m_session;
    const Theme& m_theme;
    Tab m_tab = Tab::home;
};

}  // namespace corvellan
