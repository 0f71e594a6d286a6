#include "AccessibleAlert.h"

#include <QAccessible>

namespace corvellan {

void AccessibleAlert::setTarget(QObject* target) {
    if (m_target == target)
        return;
    m_target = target;
    Q_EMIT targetChanged();
}

void AccessibleAlert::setText(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    Q_EMIT textChanged();
    if (m_text.isEmpty() || m_isSilent || m_isDue)
        return;
    m_isDue = true;
    // The target shows it once all that hangs on the change has followed.
    QMetaObject::invokeMethod(this, &AccessibleAlert::raise, Qt::QueuedConnection);
}

void AccessibleAlert::raise() {
    m_isDue = false;
    if (m_text.isEmpty() || !m_target)
        return;
    for (const auto kind : {QAccessible::Alert, QAccessible::ObjectShow}) {
        QAccessibleEvent event{m_target, kind};
        QAccessible::updateAccessibility(&event);
    }
    Q_EMIT raised();
}

void AccessibleAlert::setIsSilent(bool isSilent) {
    if (m_isSilent == isSilent)
        return;
    m_isSilent = isSilent;
    Q_EMIT isSilentChanged();
}

}  // namespace corvellan
