#include "LocalKeyMonitor.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace corvellan {

namespace {

PhysicalKey physicalKey(const QKeyEvent& event) {
    // The space bar is the same key in every layout; nothing else is asked for here.
    return event.key() == Qt::Key_Space ? PhysicalKey::space : PhysicalKey::other;
}

}  // namespace

LocalKeyMonitor::LocalKeyMonitor(std::function<Verdict(PhysicalKey)> onKeyDown) : m_onKeyDown(std::move(onKeyDown)) {
    QCoreApplication::instance()->installEventFilter(this);
}

LocalKeyMonitor::~LocalKeyMonitor() {
    if (auto* const application = QCoreApplication::instance())
        application->removeEventFilter(this);
}

bool LocalKeyMonitor::eventFilter(QObject* watched, QEvent* event) {
    // On its way to the focused control a key passes the window first; only that counts.
    if (event->type() != QEvent::KeyPress || !watched->isWindowType())
        return false;
    return m_onKeyDown(physicalKey(static_cast<const QKeyEvent&>(*event))) == Verdict::consume;
}

}  // namespace corvellan
