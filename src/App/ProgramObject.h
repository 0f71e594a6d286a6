#pragma once

#include <functional>
#include <QObject>

namespace corvellan {

struct Diagnostics;

/// The program on the session bus, at the object path "/com/teskara/CorvellanBram". It answers
/// "com.teskara.CorvellanBram" (read-only: counters and latencies) and "org.freedesktop.Application",
/// by which a later start or the desktop brings the window to the front. Main thread.
class ProgramObject final : public QObject {
    Q_OBJECT

public:
    explicit ProgramObject(const Diagnostics& diagnostics);

    /// The window is wanted. `token` is the desktop's proof that the user asked; may be empty.
    std::function<void(const QString& token)> onActivate;
};

}  // namespace corvellan
