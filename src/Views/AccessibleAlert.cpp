#include "AccessibleAlert.h"

#include <QAccessible>
#include <QQuickItem>
#include <utility>

namespace corvellan {

void AccessibleAlert::setTarget(QObject* target) {
    if (m_target == target)
        return;
    if (m_target)
        m_target->disconnect(this);
    m_target = target;
    if (const auto* const item = qobject_cast<QQuickItem*>(target))
        connect(item, &QQuickItem::enabledChanged, this, &AccessibleAlert::catchUp);
    Q_EMIT targetChanged();
}

void AccessibleAlert::setText(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    Q_EMIT textChanged();
    if (m_text.isEmpty() || m_isSilent || m_isDue)
        return;
    raiseLater();
}

void AccessibleAlert::raiseLater() {
    m_isDue = true;
    // The target shows it once all that hangs on the change has followed.
    QMetaObject::invokeMethod(this, &AccessibleAlert::raise, Qt::QueuedConnection);
}

void AccessibleAlert::raise() {
    m_isDue = false;
    if (m_text.isEmpty() || !m_target)
        return;
    const auto* const item = qobject_cast<QQuickItem*>(m_target);
    m_isWaiting = item && !item->isEnabled();
    if (m_isWaiting)
        return;
    for (const auto kind : {QAccessible::Alert, QAccessible::ObjectShow}) {
        QAccessibleEvent event{m_target, kind};
        QAccessible::updateAccessibility(&event);
    }
    Q_EMIT raised();
}

void AccessibleAlert::catchUp() {
    if (std::exchange(m_isWaiting, false) && !m_isDue)
        raiseLater();
}

void AccessibleAlert::setIsSilent(bool isSilent) {
    if (m_isSilent == isSilent)
        return;
    m_isSilent = isSilent;
    Q_EMIT isSilentChanged();
}

}  // namespace corvellan
