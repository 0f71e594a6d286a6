#include "KWinReport.h"

namespace corvellan {

KWinReport::KWinReport(std::function<void(const QString& token, const QString& answer)> onReport)
    : m_onReport(std::move(onReport)) {}

void KWinReport::report(const QString& token, const QString& answer) {
    m_onReport(token, answer);
}

}  // namespace corvellan
