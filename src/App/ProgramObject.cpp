#include "ProgramObject.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include "Base/Diagnostics.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

class DiagnosticsAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.teskara.CorvellanBram")

public:
    DiagnosticsAdaptor(const Diagnostics& diagnostics, QObject* parent)
        : QDBusAbstractAdaptor(parent),
          m_diagnostics(diagnostics) {}

public Q_SLOTS:
    /// Counters and latencies as JSON; see `Diagnostics::json`.
    [[nodiscard]] QString diagnostics() const { return QString::fromUtf8(m_diagnostics.json()); }

private:
    const Diagnostics& m_diagnostics;
};

/// As the Desktop Entry specification describes it. There are no documents to open and no actions, so
/// everything means the window.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(ProgramObject& object) : QDBusAbstractAdaptor(&object), m_object(object) {}

public Q_SLOTS:
    // NOLINTBEGIN(readability-identifier-naming): the names are the interface's own.
    void Activate(const QVariantMap& platformData) { activate(platformData); }
    void Open(const QStringList& /*uris*/, const QVariantMap& platformData) { activate(platformData); }
    void ActivateAction(const QString& /*action*/, const QVariantList& /*parameter*/, const QVariantMap& platformData) {
        activate(platformData);
    }
    // NOLINTEND(readability-identifier-naming)

private:
    void activate(const QVariantMap& platformData) {
        QString token = platformData.value(u"activation-token"_s).toString();
        if (token.isEmpty())
            token = platformData.value(u"desktop-startup-id"_s).toString();
        if (m_object.onActivate)
            m_object.onActivate(token);
    }

    ProgramObject& m_object;
};

}  // namespace

ProgramObject::ProgramObject(const Diagnostics& diagnostics) {
    // Adaptors belong to the object they speak for.
    new DiagnosticsAdaptor{diagnostics, this};
    new ApplicationAdaptor{*this};
}

}  // namespace corvellan

#include "ProgramObject.moc"
