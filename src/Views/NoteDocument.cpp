#include "NoteDocument.h"

#include <QFont>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextFragment>
#include <QTextFrame>
#include <QTextTable>
#include <vector>

#include "Markdown/MarkdownHtml.h"

namespace corvellan {

namespace {

constexpr qreal bodyPadding = 16;
constexpr qreal listIndent = 20;
constexpr qreal lineSpacing = 1.5;
constexpr int bodyTextSize = 13;
constexpr int tableTextSize = 12;
constexpr qreal tableMargin = 8;
// Below a heading of level 2 a line is drawn: its distance, and its own height.
constexpr qreal headingLineRoom = 4 + NoteDocument::lineHeight;

/// The part of a note that is shown.
QString shownPart(const QString& markdown) {
    qsizetype pieces = 0;
    const qsizetype end = std::min(markdown.size(), NoteDocument::mostCharacters);
    for (qsizetype i = 0; i < end; ++i)
        if (const QChar character = markdown[i]; character == u'\n' || character == u'|')
            if (++pieces > NoteDocument::mostPieces)
                return markdown.first(i);
    return end < markdown.size() && markdown[end - 1].isHighSurrogate() ? markdown.first(end - 1) : markdown.first(end);
}

int headingTextSize(int level) {
    return level == 2 ? 16 : 14;
}

/// Calls `change` with the format of each run of the block's text, and applies what it returns.
template <typename Change>
void restyleText(const QTextBlock& block, Change change) {
    struct Run {
        int begin;
        int end;
        QTextCharFormat format;
    };
    std::vector<Run> runs;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        runs.push_back({fragment.position(), fragment.position() + fragment.length(), fragment.charFormat()});
    }
    QTextCursor cursor{block};
    for (Run& run : runs) {
        change(run.format);
        cursor.setPosition(run.begin);
        cursor.setPosition(run.end, QTextCursor::KeepAnchor);
        cursor.setCharFormat(run.format);
    }
}

void setLineHeight(QTextBlockFormat& format, int textSize) {
    format.setLineHeight(textSize * lineSpacing, QTextBlockFormat::FixedHeight);
}

/// A paragraph without text has no height in a page; here it has to have one.
void squeeze(const QTextBlock& block) {
    QTextBlockFormat format = block.blockFormat();
    format.setTopMargin(0);
    format.setBottomMargin(0);
    format.setLineHeight(1, QTextBlockFormat::FixedHeight);
    QTextCharFormat text;
    QFont tiny;
    tiny.setPixelSize(1);
    text.setFont(tiny);
    QTextCursor cursor{block};
    cursor.setBlockFormat(format);
    cursor.setBlockCharFormat(text);
}

void restyleBlock(const QTextBlock& block) {
    QTextBlockFormat format = block.blockFormat();
    const int level = format.headingLevel();
    setLineHeight(format, level > 0 ? headingTextSize(level) : bodyTextSize);
    if (level == 2)
        format.setBottomMargin(format.bottomMargin() + headingLineRoom);
    if (level > 0)
        // The engine enlarges headings on top of the size that they were given.
        restyleText(block, [level](QTextCharFormat& text) {
            text.clearProperty(QTextFormat::FontSizeAdjustment);
            text.setProperty(QTextFormat::FontPixelSize, headingTextSize(level));
        });
    QTextCursor{block}.setBlockFormat(format);
}

void restyleCell(QTextTableCell cell, bool isHead) {
    QTextTableCellFormat format = cell.format().toTableCellFormat();
    // The ground under the pointer: the engine takes it for the ordinary one.
    if (!isHead)
        format.clearBackground();
    // A row's cells may be fewer than the table's columns; the others have no line.
    if (format.bottomBorder() > 0) {
        format.setProperty(NoteDocument::lineColorProperty, format.bottomBorderBrush().color());
        format.setBottomPadding(format.bottomPadding() + NoteDocument::lineHeight);
        format.setBottomBorder(0);
        format.setBottomBorderStyle(QTextFrameFormat::BorderStyle_None);
    }
    cell.setFormat(format);
    for (auto it = cell.begin(); !it.atEnd(); ++it) {
        const QTextBlock block = it.currentBlock();
        QTextBlockFormat lines = block.blockFormat();
        setLineHeight(lines, tableTextSize);
        QTextCursor{block}.setBlockFormat(lines);
        // The cell has it already.
        restyleText(block, [](QTextCharFormat& text) { text.clearBackground(); });
    }
}

void restyleTable(QTextTable& table) {
    QTextTableFormat format = table.format();
    format.setWidth(QTextLength{QTextLength::PercentageLength, 100});
    format.setTopMargin(tableMargin);
    format.setBottomMargin(tableMargin);
    table.setFormat(format);
    for (int row = 0; row < table.rows(); ++row)
        for (int column = 0; column < table.columns(); ++column)
            restyleCell(table.cellAt(row, column), row == 0);
}

}  // namespace

std::shared_ptr<NoteDocument> NoteDocument::make(const QString& markdown, QThread* thread) {
    std::shared_ptr<NoteDocument> document{new NoteDocument{markdown}};
    document->moveToThread(thread);
    return document;
}

NoteDocument::NoteDocument(const QString& markdown) {
    const QString shown = shownPart(markdown);
    m_isCut = shown.size() < markdown.size();
    setUndoRedoEnabled(false);
    setDocumentMargin(bodyPadding);
    setIndentWidth(listIndent);
    setHtml(markdown::wrapMarkdown(shown));
    restyle();
}

QVariant NoteDocument::loadResource(int /*type*/, const QUrl& /*name*/) {
    return {};
}

void NoteDocument::restyle() {
    QTextCursor all{this};
    all.beginEditBlock();
    for (QTextBlock block = begin(); block.isValid(); block = block.next()) {
        if (QTextCursor{block}.currentTable())
            continue;
        if (block.length() == 1 && !block.textList())
            squeeze(block);
        else
            restyleBlock(block);
    }
    for (QTextFrame* const frame : rootFrame()->childFrames())
        if (auto* const table = qobject_cast<QTextTable*>(frame))
            restyleTable(*table);
    all.endEditBlock();
}

}  // namespace corvellan
