#include "DiagnosticsObject.h"

#include <QDBusConnection>

#include "Base/Diagnostics.h"

using namespace Qt::StringLiterals;

namespace corvellan {

DiagnosticsObject::DiagnosticsObject(const Diagnostics& diagnostics, QObject* parent)
    : QObject(parent),
      m_diagnostics(diagnostics) {}

bool DiagnosticsObject::publish() {
    auto bus = QDBusConnection::sessionBus();
    return bus.isConnected() &&
           bus.registerObject(u"/com/teskara/CorvellanBram"_s, this, QDBusConnection::ExportAllSlots) &&
           bus.registerService(u"com.teskara.CorvellanBram"_s);
}

QString DiagnosticsObject::diagnostics() const {
    return QString::fromUtf8(m_diagnostics.json());
}

}  // namespace corvellan
