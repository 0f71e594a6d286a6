#include "StatusIcon.h"

#include <QFont>
#include <QPainter>
#include <QPixmap>

#include "Views/Theme.h"

namespace corvellan {

namespace {

QPixmap drawn(const QString& glyph, const QString& family, int side) {
    QPixmap canvas{side, side};
    canvas.fill(Qt::transparent);
    QFont font{family};
    font.setPixelSize(side);
    font.setHintingPreference(QFont::PreferNoHinting);
    QPainter painter{&canvas};
    painter.setFont(font);
    painter.setPen(statusIconColor());
    // The glyphs of the font fill a square of their size, with a margin of their own.
    painter.drawText(canvas.rect(), Qt::AlignCenter, glyph);
    return canvas;
}

}  // namespace

QColor statusIconColor() {
    return QColor{0x0e, 0x8a, 0x9b};
}

QIcon statusIcon(QStringView symbol) {
    const Theme theme;
    const QString glyph = symbolGlyph(symbol);
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64})
        icon.addPixmap(drawn(glyph, theme.iconFamily(), side));
    return icon;
}

}  // namespace corvellan
