#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <QPointF>
#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QRectF>
#include <QString>
#include <QTextCursor>
#include <QVariantList>
#include <vector>

#include "NoteDocument.h"
#include "NotePlaces.h"

namespace corvellan {

class Executor;

/// Shows a Markdown note as a page, for a dark ground, which is not its own: it paints none. No script runs and
/// nothing is loaded. The item is a window onto the page; whoever holds it moves that by `contentX` and `contentY`
/// or lets it do so by wheel and keys. Text can be selected and copied. Main thread.
class MarkdownWebView : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QString markdown READ markdown WRITE setMarkdown NOTIFY markdownChanged)
    /// 1 for the style's own sizes.
    Q_PROPERTY(qreal zoom READ zoom WRITE setZoom NOTIFY zoomChanged)

    /// The size of the page, its margins included; a table may be wider than the item.
    Q_PROPERTY(qreal contentWidth READ contentWidth NOTIFY layoutChanged)
    Q_PROPERTY(qreal contentHeight READ contentHeight NOTIFY layoutChanged)
    Q_PROPERTY(qreal contentX READ contentX WRITE setContentX NOTIFY scrolled)
    Q_PROPERTY(qreal contentY READ contentY WRITE setContentY NOTIFY scrolled)

    /// All that is to be read.
    Q_PROPERTY(QString plainText READ plainText NOTIFY documentChanged)
    /// The note is too long to be a page, and only its beginning is shown.
    Q_PROPERTY(bool isCut READ isCut NOTIFY documentChanged)
    Q_PROPERTY(QString selectedText READ selectedText NOTIFY selectionChanged)
    /// The links in the order of the text, at most `mostLinks`, each with "address", "text" and "rect", its place
    /// on the page.
    Q_PROPERTY(QVariantList links READ links NOTIFY layoutChanged)
    /// The address of the link under the pointer.
    Q_PROPERTY(QString hoveredLink READ hoveredLink NOTIFY hoveredLinkChanged)
    /// The keyboard has come here by the Tab key.
    Q_PROPERTY(bool visualFocus READ hasVisualFocus NOTIFY visualFocusChanged)

public:
    static constexpr int mostLinks = 100;

    explicit MarkdownWebView(QQuickItem* parent = nullptr);
    ~MarkdownWebView() override;

    /// From now on notes are converted on `worker`, so that a hostile one holds nobody up. Null, as at first: where
    /// they are shown. The worker outlives all items, or is taken away before it goes.
    static void convertOn(Executor* worker);

    [[nodiscard]] const QString& markdown() const { return m_markdown; }
    /// What was shown before goes at once; the note appears as soon as it is converted.
    void setMarkdown(const QString& markdown);

    [[nodiscard]] qreal zoom() const { return m_zoom; }
    void setZoom(qreal zoom);

    [[nodiscard]] qreal contentWidth() const { return m_contentSize.width(); }
    [[nodiscard]] qreal contentHeight() const { return m_contentSize.height(); }
    [[nodiscard]] qreal contentX() const { return m_content.x(); }
    [[nodiscard]] qreal contentY() const { return m_content.y(); }
    /// Both keep within the page.
    void setContentX(qreal x);
    void setContentY(qreal y);
    /// Scrolls just so far that this part of the page is in view.
    Q_INVOKABLE void reveal(const QRectF& part);

    [[nodiscard]] QString plainText() const;
    [[nodiscard]] bool isCut() const;
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] const QVariantList& links() const { return m_links; }
    [[nodiscard]] const QString& hoveredLink() const { return m_hoveredLink; }
    [[nodiscard]] bool hasVisualFocus() const { return m_hasVisualFocus; }

    Q_INVOKABLE void selectAll();
    /// Puts the selection on the clipboard as plain text. Without one nothing happens.
    Q_INVOKABLE void copy() const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void markdownChanged();
    void zoomChanged();
    void documentChanged();
    void layoutChanged();
    void scrolled();
    void selectionChanged();
    void hoveredLinkChanged();
    void visualFocusChanged();
    /// The user has pressed a link.
    void linkActivated(const QString& address);

protected:
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;

private:
    void loadHTML();
    void setDocument(std::shared_ptr<NoteDocument> document);
    void layOut();
    void findLinks();
    void scrollTo(QPointF place);
    void scrollBy(qreal x, qreal y) { scrollTo(m_content + QPointF{x, y}); }
    void setSelection(const QTextCursor& selection);
    void setVisualFocus(bool hasVisualFocus);
    void hover(std::optional<QPointF> place);

    [[nodiscard]] QPointF onPage(QPointF place) const { return (place + m_content) / m_zoom; }
    [[nodiscard]] QString linkAt(QPointF place) const;
    /// The row of a table's body at this place of the page; empty outside one.
    [[nodiscard]] QRectF rowAt(QPointF page) const;

    QString m_markdown;
    /// Counts notes, so that one that was converted late is not shown over a later one.
    std::uint64_t m_number = 0;
    /// Null while there is nothing to show.
    std::shared_ptr<NoteDocument> m_document;
    QSizeF m_contentSize;
    QPointF m_content;
    qreal m_zoom = 1;
    QVariantList m_links;
    std::vector<NoteLine> m_lines;
    QTextCursor m_selection;
    QString m_hoveredLink;
    QRectF m_hoveredRow;
    bool m_hasVisualFocus = false;
    /// What was under the pointer when the button went down.
    QString m_pressedLink;
};

}  // namespace corvellan
