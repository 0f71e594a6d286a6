#pragma once

#include <QObject>

namespace corvellan {

struct Diagnostics;

/// The program's answer for itself on the session bus: read-only, at the object path
/// "/com/teskara/CorvellanBram" of the name "com.teskara.CorvellanBram".
class DiagnosticsObject final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.teskara.CorvellanBram")

public:
    explicit DiagnosticsObject(const Diagnostics& diagnostics, QObject* parent = nullptr);

    /// Takes the name and exports the object. False without a session bus, or when another instance
    /// holds the name; the program goes on without it.
    bool publish();

public Q_SLOTS:
    /// Counters and latencies as JSON; see `Diagnostics::json`.
    [[nodiscard]] QString diagnostics() const;

private:
    const Diagnostics& m_diagnostics;
};

}  // namespace corvellan
