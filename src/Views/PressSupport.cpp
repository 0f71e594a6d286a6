#include "PressSupport.h"

#include <QCursor>
#include <QKeyEvent>

namespace corvellan {

void PressSupport::setButton(QQuickItem* button) {
    if (m_button == button)
        return;
    if (m_button) {
        m_button->removeEventFilter(this);
        m_button->disconnect(this);
    }
    m_button = button;
    if (m_button) {
        m_button->installEventFilter(this);
        connect(m_button, &QQuickItem::enabledChanged, this, &PressSupport::showPointer);
        showPointer();
    }
    Q_EMIT buttonChanged();
}

bool PressSupport::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    // The next face may have a button of its own under a key that is held.
    const bool isHeld = key.isAutoRepeat();
    if (event->type() == QEvent::KeyPress && isReturn && !isHeld)
        QMetaObject::invokeMethod(m_button, "clicked");
    const bool isTaken = event->type() == QEvent::KeyPress ? isReturn || (key.key() == Qt::Key_Space && isHeld)
                                                           : key.key() == Qt::Key_Space && isHeld;
    event->setAccepted(isTaken);
    return isTaken;
}

void PressSupport::showPointer() {
    if (m_button->isEnabled())
        m_button->setCursor(Qt::PointingHandCursor);
    else
        m_button->unsetCursor();
}

}  // namespace corvellan
