#pragma once

#include <optional>
#include <QPointF>
#include <QQmlEngine>
#include <QQuickItem>
#include <QSizeF>
#include <vector>

namespace corvellan {

/// Where the children of a flow stand, and what they take together.
struct FlowPlan {
    std::vector<QPointF> positions;  ///< One a child, in order.
    QSizeF size;
};

/// Puts children in rows from left to right. One that does not fit opens a new row, unless it is its row's first.
///
/// \param availableWidth absent for as much as is needed; the width taken is then that of the widest row, without
///        space behind its last child.
[[nodiscard]] FlowPlan planFlow(const std::vector<QSizeF>& children, std::optional<qreal> availableWidth,
                                qreal spacing);

/// Lays out its children by `planFlow`, each at its implicit size. Without a width of its own there is one row.
class FlowLayout : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

    /// Between neighbours, and between rows.
    Q_PROPERTY(qreal spacing READ spacing WRITE setSpacing NOTIFY spacingChanged)

public:
    explicit FlowLayout(QQuickItem* parent = nullptr);

    [[nodiscard]] qreal spacing() const { return m_spacing; }
    void setSpacing(qreal spacing);

Q_SIGNALS:
    void spacingChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void updatePolish() override;

private:
    qreal m_spacing = 0;
};

}  // namespace corvellan
