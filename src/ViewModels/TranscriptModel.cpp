#include "TranscriptModel.h"

using namespace Qt::StringLiterals;

namespace corvellan {

QString label(TranscriptSource source) {
    switch (source) {
    case TranscriptSource::mic: return u"YOU"_s;
    case TranscriptSource::system: return u"THEM"_s;
    case TranscriptSource::coach: return u"COACH"_s;
    }
    Q_UNREACHABLE();
}

Tint color(TranscriptSource source) {
    switch (source) {
    case TranscriptSource::mic: return {ColorRole::cyan};
    case TranscriptSource::system: return {ColorRole::orange};
    case TranscriptSource::coach: return {ColorRole::white, 0.4};
    }
    Q_UNREACHABLE();
}

int TranscriptModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant TranscriptModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const auto row = static_cast<std::size_t>(index.row());
    const auto& line = m_lines[row];
    switch (role) {
    case Qt::DisplayRole:
    case textRole: return line.text;
    case sourceRole: return static_cast<int>(line.source);
    case labelRole: return label(line.source);
    case startsTurnRole: return row > 0 && m_lines[row - 1].source != line.source;
    default: return {};
    }
}

QHash<int, QByteArray> TranscriptModel::roleNames() const {
    return {{textRole, "text"}, {sourceRole, "source"}, {labelRole, "label"}, {startsTurnRole, "startsTurn"}};
}

void TranscriptModel::append(TranscriptLine line) {
    const int row = count();
    beginInsertRows({}, row, row);
    m_lines.push_back(std::move(line));
    endInsertRows();
    Q_EMIT countChanged();
}

void TranscriptModel::clear() {
    if (m_lines.empty())
        return;
    beginResetModel();
    m_lines.clear();
    endResetModel();
    Q_EMIT countChanged();
}

}  // namespace corvellan
