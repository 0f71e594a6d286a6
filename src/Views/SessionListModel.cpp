#include "SessionListModel.h"

#include <algorithm>
#include <QStringList>

#include "RecordScore.h"
#include "Theme.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView trainingBadge = u"TRAIN";

QString scoreText(const SessionIndexEntry& record) {
    return u"%1/%2"_s.arg(record.meddicScore).arg(meddicCriteria);
}

QString turnsText(const SessionIndexEntry& record) {
    return QString::number(record.turns) + u" turns"_s;
}

}  // namespace

void SessionListModel::assign(SessionStoreProtocol::Index records, RecordPlaces filtered,
                              std::vector<DateSection> sections) {
    const auto before = m_filtered.size();
    const auto after = filtered.size();
    const auto isSame = [&](std::size_t old, std::size_t present) {
        return (*m_records)[m_filtered[old]].id == (*records)[filtered[present]].id;
    };
    const auto common = std::min(before, after);
    std::size_t head = 0;
    while (head < common && isSame(head, head))
        ++head;
    std::size_t tail = 0;
    while (tail < common - head && isSame(before - 1 - tail, after - 1 - tail))
        ++tail;

    // Rows go and come, even all of them: a list keeps what it drew of rows that go for those that come, which a
    // reset would have it make anew.
    const auto from = static_cast<int>(head);
    const auto lastGone = static_cast<int>(before - tail) - 1;
    const auto lastNew = static_cast<int>(after - tail) - 1;
    if (lastGone >= from) {
        beginRemoveRows({}, from, lastGone);
        m_filtered.erase(m_filtered.begin() + from, m_filtered.begin() + lastGone + 1);
        endRemoveRows();
    }
    const auto take = [&] {
        m_records = std::move(records);
        m_filtered = std::move(filtered);
        m_sections = std::move(sections);
    };
    if (lastNew >= from) {
        beginInsertRows({}, from, lastNew);
        take();
        endInsertRows();
    } else {
        take();
    }
    if (after > 0)
        Q_EMIT dataChanged(index(0), index(static_cast<int>(after) - 1));
}

int SessionListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_filtered.size());
}

const SessionIndexEntry& SessionListModel::record(int row) const {
    return (*m_records)[m_filtered[static_cast<std::size_t>(row)]];
}

int SessionListModel::rowOf(QUuid id) const {
    const auto found =
        std::ranges::find_if(m_filtered, [this, id](std::uint32_t place) { return (*m_records)[place].id == id; });
    return found == m_filtered.end() ? -1 : static_cast<int>(found - m_filtered.begin());
}

QVariant SessionListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const SessionIndexEntry& shown = record(index.row());
    const bool isColdCall = shown.audience == AudienceType::coldCall;
    switch (role) {
    case titleRole: return title(shown);
    case titleColorRole: return shown.companyName || !shown.scenario ? QString{} : colorName(ColorRole::cyan);
    case scoreRole: return isColdCall ? QString{} : scoreText(shown);
    case scoreColorRole: return colorName(recordScoreTint(shown.meddicScore).role);
    case scoreOpacityRole: return recordScoreTint(shown.meddicScore).opacity;
    case symbolRole: return isColdCall ? icon(shown.audience) : QString{};
    case isTrainingRole: return shown.wasTrainMode;
    case badgeRole: return badge(shown.audience);
    case badgeColorRole: return colorName(accentColor(shown.audience));
    case durationRole: return formattedDuration(shown.durationSecs);
    case turnsRole: return turnsText(shown);
    case sectionRole: return section(index.row());
    case spokenRole: return spoken(index.row());
    default: return {};
    }
}

QHash<int, QByteArray> SessionListModel::roleNames() const {
    return {{titleRole, "title"},
            {titleColorRole, "titleColor"},
            {scoreRole, "score"},
            {scoreColorRole, "scoreColor"},
            {scoreOpacityRole, "scoreOpacity"},
            {symbolRole, "symbol"},
            {isTrainingRole, "isTraining"},
            {badgeRole, "badge"},
            {badgeColorRole, "badgeColor"},
            {durationRole, "duration"},
            {turnsRole, "turns"},
            {sectionRole, "section"},
            {spokenRole, "spoken"}};
}

QString SessionListModel::title(const SessionIndexEntry& record) {
    return record.companyName ? *record.companyName : record.scenario.value_or(QString{});
}

QString SessionListModel::badge(AudienceType audience) {
    return audience == AudienceType::directSale ? QString{} : label(audience);
}

const QString& SessionListModel::section(int row) const {
    const auto next = std::ranges::upper_bound(m_sections, static_cast<std::size_t>(row), {}, &DateSection::first);
    return std::prev(next)->label;
}

QString SessionListModel::spoken(int row) const {
    const SessionIndexEntry& shown = record(row);
    QStringList parts{title(shown), shown.wasTrainMode ? trainingBadge.toString() : QString{}, badge(shown.audience)};
    if (shown.audience != AudienceType::coldCall)
        parts << u"MEDDIC "_s + scoreText(shown);
    parts << formattedDuration(shown.durationSecs) << turnsText(shown) << section(row);
    parts.removeAll(QString{});
    return parts.join(u", "_s);
}

}  // namespace corvellan
