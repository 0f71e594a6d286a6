#include "Box.h"

#include <algorithm>
#include <cmath>
#include <QMatrix4x4>
#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QSGRenderNode>
#include <utility>

namespace corvellan {

namespace {

struct Span {
    qreal start = 0;
    qreal length = 0;
};

Span onDevicePixels(Span span, qreal ratio) {
    const qreal start = std::round(span.start * ratio);
    const qreal length = span.length <= smallSide ? std::round(span.length * ratio)
                                                  : std::round((span.start + span.length) * ratio) - start;
    return {start, span.length > 0 ? std::max<qreal>(length, 1) : 0};
}

void paintBox(QPainter& painter, const QRectF& place, const Box::Look& look) {
    const qreal radius = std::min({look.radius, place.width() / 2, place.height() / 2});
    const qreal line = std::min({look.borderWidth, place.width() / 2, place.height() / 2});
    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing, radius > 0 || painter.transform().isRotating());
    if (line <= 0 || look.borderColor.alpha() == 0) {
        painter.setBrush(look.color);
        painter.drawRoundedRect(place, radius, radius);
        return;
    }
    const QRectF inside = place.adjusted(line, line, -line, -line);
    const qreal insideRadius = std::max<qreal>(radius - line, 0);
    if (look.color.alpha() > 0) {
        painter.setBrush(look.color);
        painter.drawRoundedRect(inside, insideRadius, insideRadius);
    }
    QPainterPath ring;
    ring.addRoundedRect(place, radius, radius);
    ring.addRoundedRect(inside, insideRadius, insideRadius);
    painter.setBrush(look.borderColor);
    painter.drawPath(ring);
}

class BoxNode : public QSGRenderNode {
public:
    void show(QQuickWindow* window, const QSizeF& size, const Box::Look& look) {
        m_window = window;
        m_place = {QPointF{}, size};
        m_look = look;
        markDirty(QSGNode::DirtyGeometry | QSGNode::DirtyMaterial);
    }

    /// With a margin: at broken ratios the renderer clips with an error of a device pixel.
    [[nodiscard]] QRectF rect() const override { return m_place.adjusted(-1, -1, 1, 1); }
    [[nodiscard]] RenderingFlags flags() const override { return BoundedRectRendering | NoExternalRendering; }

    void render(const RenderState* state) override {
        auto* const painter = static_cast<QPainter*>(
            m_window->rendererInterface()->getResource(m_window, QSGRendererInterface::PainterResource));
        if (!painter)
            return;
        if (const QRegion* const clip = state->clipRegion()) {
            // Nothing of it is to be seen: scrolled away, or behind what hides it.
            if (clip->isEmpty())
                return;
            painter->setClipRegion(*clip, Qt::ReplaceClip);
        }
        painter->setOpacity(inheritedOpacity());
        const QTransform transform = matrix()->toTransform();
        if (transform.isRotating()) {
            painter->setTransform(transform);
            paintBox(*painter, m_place, m_look);
            return;
        }
        const qreal ratio = painter->device()->devicePixelRatioF();
        painter->setTransform(QTransform::fromScale(1 / ratio, 1 / ratio));
        const qreal scale = transform.m11() * ratio;
        Box::Look look = m_look;
        look.radius *= scale;
        if (look.borderWidth > 0)
            look.borderWidth = std::max<qreal>(std::round(look.borderWidth * scale), 1);
        paintBox(*painter, corvellan::onDevicePixels(transform.mapRect(m_place), ratio), look);
    }

private:
    QQuickWindow* m_window = nullptr;
    QRectF m_place;
    Box::Look m_look;
};

}  // namespace

QRectF onDevicePixels(const QRectF& place, qreal ratio) {
    const Span across = onDevicePixels(Span{place.x(), place.width()}, ratio);
    const Span down = onDevicePixels(Span{place.y(), place.height()}, ratio);
    return {across.start, down.start, across.length, down.length};
}

Box::Box(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void Box::setColor(const QColor& color) {
    if (std::exchange(m_look.color, color) == color)
        return;
    update();
    Q_EMIT colorChanged();
}

void Box::setRadius(qreal radius) {
    if (std::exchange(m_look.radius, radius) == radius)
        return;
    update();
    Q_EMIT radiusChanged();
}

void Box::setBorderWidth(qreal width) {
    if (std::exchange(m_look.borderWidth, width) == width)
        return;
    update();
    Q_EMIT borderWidthChanged();
}

void Box::setBorderColor(const QColor& color) {
    if (std::exchange(m_look.borderColor, color) == color)
        return;
    update();
    Q_EMIT borderColorChanged();
}

void Box::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        update();
}

QSGNode* Box::updatePaintNode(QSGNode* node, UpdatePaintNodeData*) {
    const bool hasLine = m_look.borderWidth > 0 && m_look.borderColor.alpha() > 0;
    if (width() <= 0 || height() <= 0 || (!hasLine && m_look.color.alpha() == 0)) {
        delete node;
        return nullptr;
    }
    auto* box = static_cast<BoxNode*>(node);
    if (!box)
        box = new BoxNode;
    box->show(window(), size(), m_look);
    return box;
}

}  // namespace corvellan
