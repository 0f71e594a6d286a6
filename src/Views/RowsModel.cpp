#include "RowsModel.h"

namespace corvellan {

RowsModel::RowsModel(const QByteArrayList& roles, QObject* parent) : FixedRowsModel(roles, 0, parent) {}

void RowsModel::assign(const std::vector<Row>& rows) {
    fitTo(rows);
    FixedRowsModel::assign(rows);
}

}  // namespace corvellan
