#include "Views/NoteDocument.h"

#include <gtest/gtest.h>

#include <QAbstractTextDocumentLayout>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextList>
#include <QTextTable>
#include <QThread>

using namespace Qt::StringLiterals;

namespace corvellan::test {

namespace {

std::shared_ptr<NoteDocument> documentOf(const QString& markdown) {
    return NoteDocument::make(markdown, QThread::currentThread());
}

/// The block with exactly this text.
QTextBlock blockOf(const QTextDocument& document, const QString& text) {
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        if (block.text() == text)
            return block;
    ADD_FAILURE() << "no " << text.toStdString();
    return {};
}

QTextCharFormat formatOf(const QTextBlock& block) {
    return block.begin().fragment().charFormat();
}

QTextTable* tableOf(const QTextDocument& document) {
    for (QTextFrame* const frame : document.rootFrame()->childFrames())
        if (auto* const table = qobject_cast<QTextTable*>(frame))
            return table;
    return nullptr;
}

}  // namespace

TEST(NoteDocumentTest, headingsHaveTheirSizesWeightsAndColors) {
    const auto document = documentOf(u"## Two\n### Three\ntext"_s);
    const auto two = formatOf(blockOf(*document, u"Two"_s));
    EXPECT_EQ(two.font().pixelSize(), 16);
    EXPECT_EQ(two.fontWeight(), QFont::Bold);
    EXPECT_EQ(two.foreground().color(), QColor(0xff, 0xff, 0xff));
    const auto three = formatOf(blockOf(*document, u"Three"_s));
    EXPECT_EQ(three.font().pixelSize(), 14);
    EXPECT_EQ(three.fontWeight(), QFont::DemiBold);
    EXPECT_EQ(three.foreground().color(), QColor(0xf0, 0xa0, 0x50));
    EXPECT_EQ(blockOf(*document, u"Two"_s).blockFormat().headingLevel(), 2);
    EXPECT_EQ(blockOf(*document, u"Three"_s).blockFormat().headingLevel(), 3);
}

TEST(NoteDocumentTest, textAndBoldTextHaveTheirColors) {
    const auto document = documentOf(u"**bold** plain"_s);
    auto it = document->begin().begin();
    EXPECT_EQ(it.fragment().charFormat().foreground().color(), QColor(0xff, 0xff, 0xff));
    EXPECT_GE(it.fragment().charFormat().fontWeight(), QFont::Bold);
    ++it;
    EXPECT_EQ(it.fragment().charFormat().foreground().color(), QColor(0xe0, 0xe0, 0xe0));
    EXPECT_EQ(it.fragment().charFormat().font().pixelSize(), 13);
}

TEST(NoteDocumentTest, linksHaveTheirColorAndNoLine) {
    const auto document = documentOf(u"jo@mail.example"_s);
    const auto link = formatOf(document->begin());
    EXPECT_EQ(link.anchorHref(), u"mailto:jo@mail.example"_s);
    EXPECT_EQ(link.foreground().color(), QColor(0x5a, 0xc8, 0xfa));
    EXPECT_FALSE(link.fontUnderline());
}

TEST(NoteDocumentTest, aTableFillsTheWidthAndItsHeadStandsOut) {
    const auto document = documentOf(u"| a | b |\n|---|---|\n| 1 | 2 |"_s);
    QTextTable* const table = tableOf(*document);
    ASSERT_TRUE(table);
    EXPECT_EQ(table->rows(), 2);
    EXPECT_EQ(table->columns(), 2);
    EXPECT_EQ(table->format().width(), QTextLength(QTextLength::PercentageLength, 100));
    document->setTextWidth(500);
    EXPECT_NEAR(document->documentLayout()->frameBoundingRect(table).width(), 500 - 2 * document->documentMargin(), 1);

    const auto head = table->cellAt(0, 0).format().toTableCellFormat();
    const auto body = table->cellAt(1, 0).format().toTableCellFormat();
    EXPECT_GT(head.background().color().alpha(), 0);
    // The ground of a row is for the pointer alone.
    EXPECT_EQ(body.background().style(), Qt::NoBrush);
    EXPECT_EQ(head.colorProperty(NoteDocument::lineColorProperty).alpha(), 30);
    EXPECT_EQ(body.colorProperty(NoteDocument::lineColorProperty).alpha(), 12);
    EXPECT_EQ(head.bottomPadding(), 6 + NoteDocument::lineHeight);
    EXPECT_EQ(body.bottomPadding(), 5 + NoteDocument::lineHeight);
    EXPECT_EQ(head.leftPadding(), 10);
    EXPECT_EQ(body.topPadding(), 5);
    EXPECT_EQ(formatOf(table->cellAt(0, 0).firstCursorPosition().block()).font().pixelSize(), 12);
    EXPECT_EQ(formatOf(table->cellAt(0, 0).firstCursorPosition().block()).background().style(), Qt::NoBrush);
}

TEST(NoteDocumentTest, aListHasItsItems) {
    const auto document = documentOf(u"- one\n- two\n"_s);
    const QTextBlock one = blockOf(*document, u"one"_s);
    ASSERT_TRUE(one.textList());
    EXPECT_EQ(one.textList(), blockOf(*document, u"two"_s).textList());
    EXPECT_EQ(one.textList()->count(), 2);
}

TEST(NoteDocumentTest, paragraphsWithoutTextTakeNoRoom) {
    const auto close = documentOf(u"### A\n| b |"_s);
    const auto apart = documentOf(u"### A\n\n| b |"_s);
    close->setTextWidth(400);
    apart->setTextWidth(400);
    EXPECT_NEAR(close->size().height(), apart->size().height(), 10);
}

TEST(NoteDocumentTest, markupInANoteIsText) {
    const QString note = u"<script>alert(1)</script> <img src=\"file:///etc/passwd\"> <a href=\"http://x\">x</a>"_s;
    const auto document = documentOf(note);
    EXPECT_EQ(document->toPlainText(), note);
    for (const auto& format : document->allFormats())
        EXPECT_FALSE(format.isImageFormat() || !format.toCharFormat().anchorHref().isEmpty());
}

TEST(NoteDocumentTest, nothingIsLoadedFromAnywhere) {
    const QTemporaryDir folder;
    QFile file{folder.filePath(u"x.txt"_s)};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("secret");
    file.close();
    const auto document = documentOf(u"note"_s);
    for (const auto& name : {QUrl::fromLocalFile(file.fileName()), QUrl{u"http://127.0.0.1:1/x.png"_s},
                             QUrl{u"qrc:/corvellan/icons.ttf"_s}, QUrl{u"data:image/png;base64,AAAA"_s}})
        for (const auto type : {QTextDocument::ImageResource, QTextDocument::StyleSheetResource,
                                QTextDocument::HtmlResource, QTextDocument::UnknownResource})
            EXPECT_FALSE(document->resource(type, name).isValid()) << name.toString().toStdString();
}

TEST(NoteDocumentTest, aPageIsShownWhole) {
    EXPECT_FALSE(documentOf({})->isCut());
    EXPECT_FALSE(documentOf(QString(NoteDocument::mostCharacters, u'a'))->isCut());
    EXPECT_FALSE(documentOf(u"a\n"_s.repeated(NoteDocument::mostPieces))->isCut());
}

TEST(NoteDocumentTest, ofMoreThanAPageTheBeginningIsShown) {
    const auto letters = documentOf(QString(NoteDocument::mostCharacters + 1, u'a'));
    EXPECT_TRUE(letters->isCut());
    EXPECT_EQ(letters->toPlainText().size(), NoteDocument::mostCharacters);
    const auto lines = documentOf(u"- a\n"_s.repeated(NoteDocument::mostPieces + 1));
    EXPECT_TRUE(lines->isCut());
    EXPECT_LE(lines->blockCount(), NoteDocument::mostPieces + 3);
    EXPECT_TRUE(documentOf(QString(NoteDocument::mostPieces + 1, u'|'))->isCut());
}

TEST(NoteDocumentTest, theCutLeavesAPairOfSurrogatesWhole) {
    const auto document = documentOf(QString(NoteDocument::mostCharacters - 1, u'a') + u"😀"_s);
    EXPECT_TRUE(document->isCut());
    EXPECT_TRUE(document->toPlainText().endsWith(u'a'));
}

}  // namespace corvellan::test
