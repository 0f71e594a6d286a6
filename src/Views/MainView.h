#pragma once

#include <QColor>
#include <QObject>
#include <QQmlEngine>

namespace corvellan {

class SessionViewModel;

/// View state of the window's root: which face it shows, and on what surface.
class MainView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    Q_PROPERTY(bool isSessionActive READ isSessionActive NOTIFY isSessionActiveChanged)
    Q_PROPERTY(QColor surfaceColor READ surfaceColor NOTIFY surfaceChanged)
    Q_PROPERTY(int surfaceRadius READ surfaceRadius NOTIFY surfaceChanged)

public:
    explicit MainView(const SessionViewModel& session, QObject* parent = nullptr);

    [[nodiscard]] bool isSessionActive() const;
    /// Opaque between calls; in a call black at 90 %, at 60 % while stealth is on.
    [[nodiscard]] QColor surfaceColor() const;
    [[nodiscard]] int surfaceRadius() const;

Q_SIGNALS:
    void isSessionActiveChanged();
    void surfaceChanged();

private:
    const SessionViewModel& m_session;
};

}  // namespace corvellan
