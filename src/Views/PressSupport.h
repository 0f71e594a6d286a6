#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>

namespace corvellan {

/// What every button does with keys and pointer, whichever control it is made of: Return and Enter press it as Space
/// does, a key that is held presses once, and the pointer over it is a hand.
class PressSupport : public QObject {
    Q_OBJECT
    QML_ELEMENT

    /// A control with a signal `clicked`.
    Q_PROPERTY(QQuickItem* button READ button WRITE setButton NOTIFY buttonChanged)

public:
    using QObject::QObject;

    [[nodiscard]] QQuickItem* button() const { return m_button; }
    void setButton(QQuickItem* button);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void buttonChanged();

private:
    void showPointer();

    QPointer<QQuickItem> m_button;
};

}  // namespace corvellan
