#include "HandoffStatistics.h"

#include "Models/Briefing.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QList<HandoffStatistic> handoffStatistics(const std::optional<HandoffMeta>& meta) {
    QList<HandoffStatistic> statistics;
    if (!meta)
        return statistics;
    const auto add = [&statistics](const auto& count, const QString& symbol, const QString& text) {
        if (count && *count >= 1)
            statistics.append({symbol, text.arg(*count)});
    };
    add(meta->deviceCount, u"server.rack"_s, u"%1 devices"_s);
    add(meta->callCount, u"phone"_s, u"%1 calls"_s);
    add(meta->engagementEmails, u"envelope"_s, u"%1 emails"_s);
    return statistics;
}

}  // namespace corvellan
