#include "FlowLayout.h"

#include <algorithm>
#include <limits>

namespace corvellan {

FlowPlan planFlow(const std::vector<QSizeF>& children, std::optional<qreal> availableWidth, qreal spacing) {
    FlowPlan plan;
    const qreal available = availableWidth.value_or(std::numeric_limits<qreal>::infinity());
    qreal x = 0;
    qreal y = 0;
    qreal rowHeight = 0;
    qreal widest = 0;
    for (const QSizeF& child : children) {
        if (x + child.width() > available && x > 0) {
            x = 0;
            y += rowHeight + spacing;
            rowHeight = 0;
        }
        plan.positions.emplace_back(x, y);
        widest = std::max(widest, x + child.width());
        x += child.width() + spacing;
        rowHeight = std::max(rowHeight, child.height());
    }
    plan.size = {availableWidth.value_or(widest), y + rowHeight};
    return plan;
}

FlowLayout::FlowLayout(QQuickItem* parent) : QQuickItem(parent) {}

void FlowLayout::setSpacing(qreal spacing) {
    if (m_spacing == spacing)
        return;
    m_spacing = spacing;
    Q_EMIT spacingChanged();
    polish();
}

void FlowLayout::componentComplete() {
    QQuickItem::componentComplete();
    // Whoever holds it asks for its height before the first frame.
    updatePolish();
}

void FlowLayout::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemChildAddedChange) {
        for (const auto changed : {&QQuickItem::implicitWidthChanged, &QQuickItem::implicitHeightChanged})
            connect(data.item, changed, this, &QQuickItem::polish);
        connect(data.item, &QQuickItem::visibleChanged, this, &QQuickItem::polish);
        polish();
    } else if (change == ItemChildRemovedChange) {
        disconnect(data.item, nullptr, this, nullptr);
        polish();
    }
}

void FlowLayout::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.width() == oldGeometry.width())
        return;
    // A layout round it that is told of another height while it works begins anew, and gives up in the end.
    if (window())
        polish();
    else
        updatePolish();
}

void FlowLayout::updatePolish() {
    std::vector<QQuickItem*> items;
    std::vector<QSizeF> sizes;
    for (QQuickItem* const item : childItems()) {
        const QSizeF size{item->implicitWidth(), item->implicitHeight()};
        // A repeater is an item too, though nothing to see.
        if (!item->isVisible() || size.isNull())
            continue;
        items.push_back(item);
        sizes.push_back(size);
    }
    const FlowPlan plan = planFlow(sizes, widthValid() ? std::optional{width()} : std::nullopt, m_spacing);
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i]->setPosition(plan.positions[i]);
        items[i]->setSize(sizes[i]);
    }
    setImplicitSize(planFlow(sizes, std::nullopt, m_spacing).size.width(), plan.size.height());
}

}  // namespace corvellan
