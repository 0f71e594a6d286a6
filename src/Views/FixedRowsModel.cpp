#include "FixedRowsModel.h"

namespace corvellan {

FixedRowsModel::FixedRowsModel(const QByteArrayList& roles, int rowCount, QObject* parent)
    : QAbstractListModel(parent),
      m_roles(roles),
      m_rows(static_cast<std::size_t>(rowCount), Row(roles.size())) {}

void FixedRowsModel::assign(const std::vector<Row>& rows) {
    Q_ASSERT(rows.size() == m_rows.size());
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        QList<int> changed;
        for (qsizetype column = 0; column < m_roles.size(); ++column)
            if (m_rows[row][column] != rows[row][column])
                changed.append(Qt::UserRole + static_cast<int>(column));
        if (changed.isEmpty())
            continue;
        m_rows[row] = rows[row];
        const QModelIndex at = index(static_cast<int>(row));
        Q_EMIT dataChanged(at, at, changed);
    }
}

void FixedRowsModel::fitTo(const std::vector<Row>& rows) {
    const auto present = static_cast<std::ptrdiff_t>(m_rows.size());
    const auto wanted = static_cast<std::ptrdiff_t>(rows.size());
    if (wanted < present) {
        beginRemoveRows({}, static_cast<int>(wanted), static_cast<int>(present) - 1);
        m_rows.resize(rows.size());
        endRemoveRows();
    } else if (wanted > present) {
        beginInsertRows({}, static_cast<int>(present), static_cast<int>(wanted) - 1);
        m_rows.insert(m_rows.end(), rows.begin() + present, rows.end());
        endInsertRows();
    }
}

QVariant FixedRowsModel::value(int row, const QByteArray& role) const {
    return data(index(row), Qt::UserRole + static_cast<int>(m_roles.indexOf(role)));
}

int FixedRowsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant FixedRowsModel::data(const QModelIndex& index, int role) const {
    const int column = role - Qt::UserRole;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || column < 0 || column >= m_roles.size())
        return {};
    return m_rows[static_cast<std::size_t>(index.row())][column];
}

QHash<int, QByteArray> FixedRowsModel::roleNames() const {
    QHash<int, QByteArray> names;
    for (qsizetype column = 0; column < m_roles.size(); ++column)
        names.insert(Qt::UserRole + static_cast<int>(column), m_roles[column]);
    return names;
}

}  // namespace corvellan
