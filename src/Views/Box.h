#pragma once

#include <QColor>
#include <QQmlEngine>
#include <QQuickItem>
#include <QRectF>

namespace corvellan {

/// Where a box goes on a screen with `ratio` device pixels to one of `place`'s, in device pixels: its edges lie on
/// theirs. A side of up to `smallSide` keeps its length wherever the box stands, so that lines and dots of one kind
/// look alike; a longer one ends where it should, so that it meets its neighbours. What has an extent keeps one.
[[nodiscard]] QRectF onDevicePixels(const QRectF& place, qreal ratio);

inline constexpr qreal smallSide = 28;

/// A filled box, with a line along the inside of its edge if wanted, that is sharp at any device pixel ratio. The
/// scene graph's own rectangle is not at a broken one: its lines differ in width, and its corners leave seams.
/// Needs the software renderer, which `prepareQuick` picks.
class Box : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// Of the corners; never more than half a side.
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)
    /// 0 for no line.
    Q_PROPERTY(qreal borderWidth READ borderWidth WRITE setBorderWidth NOTIFY borderWidthChanged)
    /// Transparent for no line.
    Q_PROPERTY(QColor borderColor READ borderColor WRITE setBorderColor NOTIFY borderColorChanged)

public:
    struct Look {
        QColor color = Qt::transparent;
        QColor borderColor = Qt::transparent;
        qreal radius = 0;
        qreal borderWidth = 1;

        bool operator==(const Look&) const = default;
    };

    explicit Box(QQuickItem* parent = nullptr);

    [[nodiscard]] QColor color() const { return m_look.color; }
    void setColor(const QColor& color);
    [[nodiscard]] qreal radius() const { return m_look.radius; }
    void setRadius(qreal radius);
    [[nodiscard]] qreal borderWidth() const { return m_look.borderWidth; }
    void setBorderWidth(qreal width);
    [[nodiscard]] QColor borderColor() const { return m_look.borderColor; }
    void setBorderColor(const QColor& color);

Q_SIGNALS:
    void colorChanged();
    void radiusChanged();
    void borderWidthChanged();
    void borderColorChanged();

protected:
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    Look m_look;
};

}  // namespace corvellan
