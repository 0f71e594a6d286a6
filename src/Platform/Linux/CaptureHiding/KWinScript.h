#pragma once

#include <QByteArray>
#include <QString>

#include "HidingFacility.h"

namespace corvellan {

/// Where a script reports to, on the session bus.
struct KWinReportAddress {
    QString service;
    QString path;
    QString interfaceName;
    /// Comes back with the report; known to nobody else.
    QString token;
};

/// A script for KWin that sets `excludeFromCapture` on the windows of the request, reads it back and reports
/// one word: "done", "refused" (it read back otherwise), "unsupported" (no such property, before Plasma
/// 6.6) or "missing" (no such window).
[[nodiscard]] QByteArray kwinScript(const HidingRequest& request, const KWinReportAddress& report);

}  // namespace corvellan
