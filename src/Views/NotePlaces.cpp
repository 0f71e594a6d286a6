#include "NotePlaces.h"

#include <algorithm>
#include <optional>
#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextLayout>
#include <QTextTable>

#include "NoteDocument.h"

namespace corvellan {

namespace {

constexpr QColor headingLine{255, 255, 255, 26};
constexpr qreal headingLineDistance = 4;

/// Empty where the row has none.
NoteLine lineBelow(QTextTable& table, int row) {
    NoteLine line;
    qreal bottom = 0;
    std::optional<qreal> right;
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        const QTextTableCellFormat format = cell.format().toTableCellFormat();
        const QRectF text = placeOf(cell);
        if (!format.hasProperty(NoteDocument::lineColorProperty)) {
            right = text.left() - format.leftPadding();
            break;
        }
        line.color = format.colorProperty(NoteDocument::lineColorProperty);
        bottom = std::max(bottom, text.bottom() + format.bottomPadding());
        if (column == 0)
            line.place.setLeft(text.left() - format.leftPadding());
    }
    line.place.setTop(bottom - NoteDocument::lineHeight);
    line.place.setBottom(bottom);
    // The engine tells a table's width, but not its place.
    const qreal width = table.document()->documentLayout()->frameBoundingRect(&table).width();
    line.place.setRight(right.value_or(line.place.left() + width));
    return line;
}

}  // namespace

QList<NoteLink> linksOf(const QTextBlock& block) {
    QList<NoteLink> links;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const QString address = fragment.charFormat().anchorHref();
        if (address.isEmpty())
            continue;
        if (!links.isEmpty() && links.last().end == fragment.position() && links.last().address == address) {
            links.last().end += fragment.length();
            links.last().text += fragment.text();
        } else {
            links.append({address, fragment.text(), fragment.position(), fragment.position() + fragment.length()});
        }
    }
    return links;
}

std::vector<NoteLine> linesOf(const NoteDocument& document) {
    std::vector<NoteLine> lines;
    const qreal margin = document.documentMargin();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        if (block.blockFormat().headingLevel() == 2) {
            const qreal y = placeOf(block).bottom() + headingLineDistance;
            lines.push_back({{margin, y, document.textWidth() - 2 * margin, NoteDocument::lineHeight}, headingLine});
        }
    for (QTextFrame* const frame : document.rootFrame()->childFrames())
        if (auto* const table = qobject_cast<QTextTable*>(frame))
            for (int row = 0; row < table->rows(); ++row)
                if (const NoteLine line = lineBelow(*table, row); !line.place.isEmpty())
                    lines.push_back(line);
    return lines;
}

QRectF placeOf(const NoteLink& link, const QTextBlock& block) {
    const QTextLine line = block.layout()->lineForTextPosition(link.begin - block.position());
    if (!line.isValid())
        return {};
    const int last = std::min(link.end - block.position(), line.textStart() + line.textLength());
    const qreal left = line.cursorToX(link.begin - block.position());
    const qreal right = line.cursorToX(last);
    return QRectF{left, line.y(), right - left, line.height()}.translated(
        block.document()->documentLayout()->blockBoundingRect(block).topLeft());
}

QRectF placeOf(const QTextBlock& block) {
    QRectF place = block.document()->documentLayout()->blockBoundingRect(block);
    // The engine tells it without what the fixed height of its lines adds.
    place.setHeight(block.layout()->lineCount() * block.blockFormat().lineHeight());
    return place;
}

QRectF placeOf(const QTextTableCell& cell) {
    QRectF place;
    for (auto it = cell.begin(); !it.atEnd(); ++it)
        place |= placeOf(it.currentBlock());
    return place;
}

}  // namespace corvellan
