#pragma once

#include <QAbstractListModel>
#include <QByteArrayList>
#include <QQmlEngine>
#include <QVariantList>
#include <vector>

namespace corvellan {

/// A few rows of finished values for a QML view. The number of rows is fixed, so that delegates stay
/// and their animations run; only what has really changed is told.
class FixedRowsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Part of a view state")

public:
    /// One value a role, in the order of the roles.
    using Row = QVariantList;

    FixedRowsModel(const QByteArrayList& roles, int rowCount, QObject* parent = nullptr);

    /// \param rows as many as the model has.
    void assign(const std::vector<Row>& rows);
    /// For tests: what `role` reads in `row`.
    [[nodiscard]] QVariant value(int row, const QByteArray& role) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

protected:
    /// Takes rows away at the end, or adds those of `rows` that are missing there.
    void fitTo(const std::vector<Row>& rows);

private:
    QByteArrayList m_roles;
    std::vector<Row> m_rows;
};

}  // namespace corvellan
