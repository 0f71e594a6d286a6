#pragma once

#include <functional>
#include <QObject>

#include "Platform/GlobalKeys.h"

namespace corvellan {

/// Sees every key that goes down in one of the program's own windows before the window does, for as long
/// as it lives. Main thread.
class LocalKeyMonitor final : public QObject {
    Q_OBJECT

public:
    enum class Verdict { pass, consume };

    /// \param onKeyDown also called for the repeats of a key that is held.
    explicit LocalKeyMonitor(std::function<Verdict(PhysicalKey)> onKeyDown);
    ~LocalKeyMonitor() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<Verdict(PhysicalKey)> m_onKeyDown;
};

}  // namespace corvellan
