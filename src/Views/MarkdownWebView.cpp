#include "MarkdownWebView.h"

#include <algorithm>
#include <QAbstractTextDocumentLayout>
#include <QClipboard>
#include <QCursor>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QMarginsF>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QTextLayout>
#include <QTextTable>
#include <QThread>
#include <QVariantMap>
#include <QWheelEvent>

#include "Base/Tasks.h"
#include "Box.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr QColor textColor{0xe0, 0xe0, 0xe0};
constexpr QColor hoveredGround{255, 255, 255, 8};
constexpr QColor selectedGround{0x2a, 0x5d, 0x9c};
// The sides of a cell in a table's body, as its style has them.
constexpr QMarginsF cellPadding{10, 5, 10, 5};
constexpr qreal lineStep = 24;

Executor*& worker() {
    static Executor* executor = nullptr;
    return executor;
}

/// So that lines of one height look alike wherever they lie and however the page is scaled.
void fillOnDevicePixels(QPainter& painter, const QRectF& place, const QColor& color) {
    const QTransform toDevice = painter.deviceTransform();
    painter.fillRect(toDevice.inverted().mapRect(onDevicePixels(toDevice.mapRect(place), 1)), color);
}

}  // namespace

MarkdownWebView::MarkdownWebView(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
}

MarkdownWebView::~MarkdownWebView() = default;

void MarkdownWebView::convertOn(Executor* executor) {
    worker() = executor;
}

void MarkdownWebView::setMarkdown(const QString& markdown) {
    if (m_markdown == markdown)
        return;
    m_markdown = markdown;
    Q_EMIT markdownChanged();
    loadHTML();
}

void MarkdownWebView::loadHTML() {
    ++m_number;
    QThread* const here = thread();
    Executor* const executor = worker();
    if (!executor || !Executor::current()) {
        setDocument(NoteDocument::make(m_markdown, here));
        return;
    }
    setDocument(nullptr);
    static_cast<void>([](QPointer<MarkdownWebView> self, Executor* executor, QString markdown, std::uint64_t number,
                         QThread* here) -> QCoro::Task<void> {
        const auto convert = [&markdown, here] { return NoteDocument::make(markdown, here); };
        const auto document = co_await executor->call(convert);
        if (self && self->m_number == number)
            self->setDocument(document);
    }(this, executor, m_markdown, m_number, here));
}

void MarkdownWebView::setDocument(std::shared_ptr<NoteDocument> document) {
    m_selection = {};
    m_document = std::move(document);
    m_content = {};
    m_hoveredRow = {};
    layOut();
    Q_EMIT documentChanged();
    Q_EMIT selectionChanged();
    Q_EMIT scrolled();
    if (!m_hoveredLink.isEmpty()) {
        m_hoveredLink.clear();
        Q_EMIT hoveredLinkChanged();
    }
}

void MarkdownWebView::layOut() {
    m_contentSize = {};
    if (m_document && width() > 0) {
        m_document->setTextWidth(width() / m_zoom);
        m_contentSize = m_document->size() * m_zoom;
    }
    findLinks();
    m_lines = m_document && !m_contentSize.isEmpty() ? linesOf(*m_document) : std::vector<NoteLine>{};
    setImplicitHeight(m_contentSize.height());
    Q_EMIT layoutChanged();
    scrollTo(m_content);
    update();
}

void MarkdownWebView::findLinks() {
    m_links.clear();
    if (!m_document || m_contentSize.isEmpty())
        return;
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next())
        for (const NoteLink& link : linksOf(block)) {
            if (m_links.size() == mostLinks)
                return;
            const QRectF place = placeOf(link, block);
            m_links.append(QVariantMap{{u"address"_s, link.address},
                                       {u"text"_s, link.text},
                                       {u"rect"_s, QRectF{place.topLeft() * m_zoom, place.size() * m_zoom}}});
        }
}

void MarkdownWebView::setZoom(qreal zoom) {
    if (qFuzzyCompare(m_zoom, zoom) || zoom <= 0)
        return;
    // What was at the top stays there, as nearly as another width of lines allows.
    const qreal share = m_contentSize.height() > 0 ? m_content.y() / m_contentSize.height() : 0;
    m_zoom = zoom;
    layOut();
    setContentY(share * m_contentSize.height());
    Q_EMIT zoomChanged();
}

void MarkdownWebView::setContentX(qreal x) {
    scrollTo({x, m_content.y()});
}

void MarkdownWebView::setContentY(qreal y) {
    scrollTo({m_content.x(), y});
}

void MarkdownWebView::scrollTo(QPointF place) {
    const QPointF next{std::clamp(place.x(), 0.0, std::max(0.0, m_contentSize.width() - width())),
                       std::clamp(place.y(), 0.0, std::max(0.0, m_contentSize.height() - height()))};
    if (next == m_content)
        return;
    m_content = next;
    hover({});
    update();
    Q_EMIT scrolled();
}

void MarkdownWebView::reveal(const QRectF& part) {
    QPointF place = m_content;
    place.setX(std::max(std::min(place.x(), part.left()), part.right() - width()));
    place.setY(std::max(std::min(place.y(), part.top()), part.bottom() - height()));
    scrollTo(place);
}

QString MarkdownWebView::plainText() const {
    return m_document ? m_document->toPlainText().trimmed() : QString{};
}

bool MarkdownWebView::isCut() const {
    return m_document && m_document->isCut();
}

QString MarkdownWebView::selectedText() const {
    return m_selection.isNull() ? QString{} : m_selection.selection().toPlainText();
}

void MarkdownWebView::setSelection(const QTextCursor& selection) {
    m_selection = selection;
    update();
    Q_EMIT selectionChanged();
}

void MarkdownWebView::selectAll() {
    if (!m_document)
        return;
    QTextCursor all{m_document.get()};
    all.select(QTextCursor::Document);
    setSelection(all);
}

void MarkdownWebView::copy() const {
    if (const QString text = selectedText(); !text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void MarkdownWebView::paint(QPainter* painter) {
    if (!m_document)
        return;
    painter->translate(-m_content);
    painter->scale(m_zoom, m_zoom);
    QAbstractTextDocumentLayout& layout = *m_document->documentLayout();
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF{m_content / m_zoom, size() / m_zoom};
    context.palette.setColor(QPalette::Text, textColor);
    if (m_selection.hasSelection()) {
        QAbstractTextDocumentLayout::Selection selected{m_selection, {}};
        selected.format.setBackground(selectedGround);
        context.selections.append(selected);
    }
    if (!m_hoveredRow.isEmpty())
        painter->fillRect(m_hoveredRow, hoveredGround);
    for (QTextBlock block = m_hoveredLink.isEmpty() ? QTextBlock{} : m_document->begin(); block.isValid();
         block = block.next()) {
        for (const NoteLink& link : linksOf(block)) {
            if (link.address != m_hoveredLink)
                continue;
            QAbstractTextDocumentLayout::Selection underlined{QTextCursor{m_document.get()}, {}};
            underlined.cursor.setPosition(link.begin);
            underlined.cursor.setPosition(link.end, QTextCursor::KeepAnchor);
            underlined.format.setFontUnderline(true);
            context.selections.append(underlined);
        }
    }
    layout.draw(painter, context);
    for (const NoteLine& line : m_lines)
        if (line.place.intersects(context.clip))
            fillOnDevicePixels(*painter, line.place, line.color);
}

void MarkdownWebView::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.width() != oldGeometry.width())
        layOut();
    else if (newGeometry.height() != oldGeometry.height())
        scrollTo(m_content);
}

void MarkdownWebView::focusInEvent(QFocusEvent* event) {
    QQuickPaintedItem::focusInEvent(event);
    setVisualFocus(event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason);
}

void MarkdownWebView::focusOutEvent(QFocusEvent* event) {
    QQuickPaintedItem::focusOutEvent(event);
    setVisualFocus(false);
}

void MarkdownWebView::setVisualFocus(bool hasVisualFocus) {
    if (m_hasVisualFocus == hasVisualFocus)
        return;
    m_hasVisualFocus = hasVisualFocus;
    Q_EMIT visualFocusChanged();
}

void MarkdownWebView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copy();
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    const QPointF before = m_content;
    if (!(event->modifiers() & ~Qt::KeypadModifier))
        switch (event->key()) {
        case Qt::Key_Up: scrollBy(0, -lineStep); break;
        case Qt::Key_Down: scrollBy(0, lineStep); break;
        case Qt::Key_Left: scrollBy(-lineStep, 0); break;
        case Qt::Key_Right: scrollBy(lineStep, 0); break;
        case Qt::Key_PageUp: scrollBy(0, lineStep - height()); break;
        case Qt::Key_PageDown: scrollBy(0, height() - lineStep); break;
        case Qt::Key_Home: setContentY(0); break;
        case Qt::Key_End: setContentY(m_contentSize.height()); break;
        default: break;
        }
    // What doesn't move the page may move what lies round it.
    event->setAccepted(m_content != before);
}

void MarkdownWebView::wheelEvent(QWheelEvent* event) {
    const QPointF before = m_content;
    QPointF step = event->pixelDelta().isNull() ? QPointF{event->angleDelta()} / 3 : QPointF{event->pixelDelta()};
    if (event->modifiers() & Qt::ShiftModifier)
        step = step.transposed();
    scrollBy(-step.x(), -step.y());
    event->setAccepted(m_content != before);
}

QString MarkdownWebView::linkAt(QPointF place) const {
    return m_document ? m_document->documentLayout()->anchorAt(onPage(place)) : QString{};
}

void MarkdownWebView::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    m_pressedLink = linkAt(event->position());
    if (!m_document)
        return;
    QTextCursor cursor{m_document.get()};
    cursor.setPosition(m_document->documentLayout()->hitTest(onPage(event->position()), Qt::FuzzyHit));
    setSelection(cursor);
}

void MarkdownWebView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_document || m_selection.isNull())
        return;
    // Beyond the edge the page follows.
    const QPointF place = event->position();
    scrollBy(0, std::min(0.0, place.y()) + std::max(0.0, place.y() - height()));
    QTextCursor cursor = m_selection;
    cursor.setPosition(m_document->documentLayout()->hitTest(onPage(place), Qt::FuzzyHit), QTextCursor::KeepAnchor);
    if (cursor.hasSelection())
        m_pressedLink.clear();
    setSelection(cursor);
}

void MarkdownWebView::mouseReleaseEvent(QMouseEvent* event) {
    if (const QString link = linkAt(event->position()); !link.isEmpty() && link == m_pressedLink)
        Q_EMIT linkActivated(link);
    m_pressedLink.clear();
}

void MarkdownWebView::mouseDoubleClickEvent(QMouseEvent* event) {
    m_pressedLink.clear();
    if (!m_document)
        return;
    QTextCursor cursor{m_document.get()};
    cursor.setPosition(m_document->documentLayout()->hitTest(onPage(event->position()), Qt::FuzzyHit));
    cursor.select(QTextCursor::WordUnderCursor);
    setSelection(cursor);
}

void MarkdownWebView::hoverMoveEvent(QHoverEvent* event) {
    hover(event->position());
}

void MarkdownWebView::hoverLeaveEvent(QHoverEvent* /*event*/) {
    hover({});
}

void MarkdownWebView::hover(std::optional<QPointF> place) {
    const QString link = place ? linkAt(*place) : QString{};
    const QRectF row = place ? rowAt(onPage(*place)) : QRectF{};
    setCursor(link.isEmpty() ? Qt::IBeamCursor : Qt::PointingHandCursor);
    if (row != m_hoveredRow) {
        m_hoveredRow = row;
        update();
    }
    if (link == m_hoveredLink)
        return;
    m_hoveredLink = link;
    update();
    Q_EMIT hoveredLinkChanged();
}

QRectF MarkdownWebView::rowAt(QPointF page) const {
    if (!m_document)
        return {};
    const QAbstractTextDocumentLayout& layout = *m_document->documentLayout();
    QTextCursor cursor{m_document.get()};
    cursor.setPosition(layout.hitTest(page, Qt::FuzzyHit));
    QTextTable* const table = cursor.currentTable();
    if (!table || !layout.frameBoundingRect(table).contains(page))
        return {};
    const int row = table->cellAt(cursor).row();
    if (row == 0)
        return {};
    QRectF rect;
    for (int column = 0; column < table->columns(); ++column)
        rect |= placeOf(table->cellAt(row, column));
    // The text in the last cells may end anywhere.
    const qreal margin = m_document->documentMargin();
    rect = rect.marginsAdded(cellPadding);
    rect.setRight(std::max(rect.right(), m_document->size().width() - margin));
    return rect;
}

}  // namespace corvellan
