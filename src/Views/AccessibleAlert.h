#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QString>

namespace corvellan {

/// Raises an accessibility alert on `target` whenever `text` becomes another one that is not empty, so
/// that a screen reader speaks a tip that appears while the keyboard is elsewhere.
class AccessibleAlert : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QObject* target READ target WRITE setTarget NOTIFY targetChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)

public:
    using QObject::QObject;

    [[nodiscard]] QObject* target() const { return m_target; }
    void setTarget(QObject* target);
    [[nodiscard]] const QString& text() const { return m_text; }
    void setText(const QString& text);

Q_SIGNALS:
    void targetChanged();
    void textChanged();
    /// An alert has been raised; whether anyone listens is not known.
    void raised();

private:
    QPointer<QObject> m_target;
    QString m_text;
};

}  // namespace corvellan
