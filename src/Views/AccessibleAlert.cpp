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
    if (m_text.isEmpty() || !m_target)
        return;
    QAccessibleEvent alert{m_target, QAccessible::Alert};
    QAccessible::updateAccessibility(&alert);
    Q_EMIT raised();
}

}  // namespace corvellan
