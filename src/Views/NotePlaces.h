#pragma once

#include <QColor>
#include <QList>
#include <QRectF>
#include <QString>
#include <vector>

class QTextBlock;
class QTextTableCell;

namespace corvellan {

class NoteDocument;

/// Where the parts of a note lie on its page, in the page's own units from its upper left corner. For a document that
/// has been laid out, on the thread where it lives.

struct NoteLink {
    QString address;
    QString text;
    // Places in the document's text.
    int begin = 0;
    int end = 0;
};

/// A line below a heading, or below a row of a table.
struct NoteLine {
    QRectF place;
    QColor color;
};

/// The links in `block`, whatever formats their text has.
[[nodiscard]] QList<NoteLink> linksOf(const QTextBlock& block);
[[nodiscard]] std::vector<NoteLine> linesOf(const NoteDocument& document);

/// The first line of `link`, which stands in `block`.
[[nodiscard]] QRectF placeOf(const NoteLink& link, const QTextBlock& block);
/// The text in `block`.
[[nodiscard]] QRectF placeOf(const QTextBlock& block);
/// The text in `cell`.
[[nodiscard]] QRectF placeOf(const QTextTableCell& cell);

}  // namespace corvellan
