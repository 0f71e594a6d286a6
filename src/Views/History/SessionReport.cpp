#include "SessionReport.h"

#include <algorithm>

#include "Base/Text.h"
#include "Views/MeddicLabels.h"

namespace corvellan {

using namespace Qt::StringLiterals;

std::array<std::optional<QString>, meddicCriteria> evidenceOf(const SessionRecord& record) {
    std::array<std::optional<QString>, meddicCriteria> evidence;
    if (record.meddicEvidence)
        std::copy_n(record.meddicEvidence->begin(), std::min(record.meddicEvidence->size(), evidence.size()),
                    evidence.begin());
    return evidence;
}

QString discName(const SessionRecord& record) {
    return text::upperFirst(tableText(rawValue(record.disc().discType)));
}

QString sessionShareText(const SessionRecord& record, const DateStyle& style) {
    const MeddicScore meddic = record.meddic();
    QStringList lines{u"# Corvellan Bram — Session Report"_s, QString{}};
    if (record.companyName)
        lines << u"**Company:** "_s + *record.companyName;
    lines << u"**Date:** "_s + mediumDateShortTime(record.createdDate, style);
    lines << u"**Duration:** "_s + record.formattedDuration();
    lines << u"**Turns:** "_s + QString::number(record.turns);
    if (record.wasTrainMode)
        lines << u"**Mode:** Training"_s;
    lines << QString{};
    lines << u"## MEDDIC: %1/%2"_s.arg(meddic.score()).arg(meddicCriteria);
    const auto evidence = evidenceOf(record);
    for (std::size_t i = 0; i < evidence.size(); ++i) {
        const auto mark = meddic.values()[i] ? u'+' : u'-';
        lines << u"  "_s + mark + u" **"_s + meddicLetters[i] + u"** "_s + meddicLabels[i] +
                     (evidence[i] ? u" — "_s + *evidence[i] : QString{});
    }
    lines << QString{};
    lines << u"**DISC:** "_s + discName(record);
    lines << QString{};
    if (!record.coachingPoints.isEmpty()) {
        lines << u"## Key Points"_s;
        for (const QString& point : record.coachingPoints)
            lines << u"- "_s + point;
        lines << QString{};
    }
    if (!record.transcript.isEmpty())
        lines << u"## Transcript"_s << record.transcript;
    return lines.join(u'\n');
}

}  // namespace corvellan
