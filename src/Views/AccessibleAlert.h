#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QString>

namespace corvellan {

/// Raises an accessibility alert on `target` whenever `text` becomes another one that is not empty, so
/// that a screen reader speaks a tip that appears while the keyboard is elsewhere. Qt 6.4 keeps alerts from AT-SPI;
/// its screen readers speak what is reported as showing now and has the role of a notification, which `target` needs.
/// While `target` is disabled, as on a screen that nobody has opened, the alert waits.
class AccessibleAlert : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QObject* target READ target WRITE setTarget NOTIFY targetChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// While it is, texts change and nobody is told: the same one is spoken elsewhere.
    Q_PROPERTY(bool isSilent READ isSilent WRITE setIsSilent NOTIFY isSilentChanged)

public:
    using QObject::QObject;

    [[nodiscard]] QObject* target() const { return m_target; }
    void setTarget(QObject* target);
    [[nodiscard]] const QString& text() const { return m_text; }
    void setText(const QString& text);
    [[nodiscard]] bool isSilent() const { return m_isSilent; }
    void setIsSilent(bool isSilent);

Q_SIGNALS:
    void targetChanged();
    void textChanged();
    void isSilentChanged();
    /// An alert has been raised; whether anyone listens is not known.
    void raised();

private:
    void raiseLater();
    void raise();
    void catchUp();

    QPointer<QObject> m_target;
    QString m_text;
    bool m_isSilent = false;
    bool m_isDue = false;
    bool m_isWaiting = false;
};

}  // namespace corvellan
