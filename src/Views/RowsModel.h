#pragma once

#include "FixedRowsModel.h"

namespace corvellan {

/// As `FixedRowsModel`, for a list that grows and shrinks. A row that keeps its place keeps its delegate.
class RowsModel : public FixedRowsModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Part of a view state")

public:
    explicit RowsModel(const QByteArrayList& roles, QObject* parent = nullptr);

    /// Any number of rows.
    void assign(const std::vector<Row>& rows);
};

}  // namespace corvellan
