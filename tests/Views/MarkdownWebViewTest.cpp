#include "Views/MarkdownWebView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QTest>
#include <QWheelEvent>
#include <semaphore>

#include "Base/Executor.h"
#include "Support/TestLoop.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {

namespace {

class MarkdownWebViewTest : public testing::Test {
protected:
    MarkdownWebViewTest() {
        window.resize(400, 300);
        view = new MarkdownWebView{window.contentItem()};
        view->setSize({400, 300});
        QObject::connect(view, &MarkdownWebView::linkActivated, view,
                         [this](const QString& address) { activated.append(address); });
        window.show();
        window.requestActivate();
        EXPECT_TRUE(spinUntil([this] { return window.isExposed() && window.isActive(); }));
    }
    ~MarkdownWebViewTest() override { MarkdownWebView::convertOn(nullptr); }

    /// The middle of the link on screen.
    [[nodiscard]] QPoint placeOfLink(int index) const {
        const QRectF rect = view->links().at(index).toMap().value(u"rect"_s).toRectF();
        return (rect.center() - QPointF{view->contentX(), view->contentY()}).toPoint();
    }
    void turnWheel(int angle) {
        const QPointF place{100, 100};
        QWheelEvent turn{place, window.mapToGlobal(place), {}, {0, angle}, {}, {}, Qt::NoScrollPhase, false};
        QCoreApplication::sendEvent(&window, &turn);
    }
    /// On a screen with so many device pixels to one of the view's.
    [[nodiscard]] QImage picture(qreal ratio = 1) const {
        QImage image{QSize{400, 300} * ratio, QImage::Format_RGB32};
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::black);
        QPainter painter{&image};
        view->paint(&painter);
        return image;
    }

    QQuickWindow window;
    MarkdownWebView* view = nullptr;
    QStringList activated;
};

/// Work that goes no further until it is let go.
class HeldWorker {
public:
    HeldWorker() {
        m_thread.executor().post([this] { m_gate.acquire(); });
    }
    ~HeldWorker() { letGo(); }
    HeldWorker(const HeldWorker&) = delete;
    HeldWorker& operator=(const HeldWorker&) = delete;

    void letGo() {
        if (!m_isLetGo.exchange(true))
            m_gate.release();
    }
    [[nodiscard]] Executor& executor() const { return m_thread.executor(); }

private:
    std::atomic<bool> m_isLetGo = false;
    std::binary_semaphore m_gate{0};
    WorkerThread m_thread{"test-notes"};
};

const QString longNote = u"line of words\n\n"_s.repeated(100);

}  // namespace

// MARK: - Conversion

TEST_F(MarkdownWebViewTest, rendersAgainEachTimeTheNoteChanges) {
    view->setMarkdown(u"## One"_s);
    EXPECT_EQ(view->plainText(), u"One"_s);
    view->setMarkdown(u"**two**"_s);
    EXPECT_EQ(view->plainText(), u"two"_s);
    view->setMarkdown({});
    EXPECT_EQ(view->plainText(), QString{});
}

TEST_F(MarkdownWebViewTest, aHostileNoteIsConvertedElsewhere) {
    HeldWorker worker;
    MarkdownWebView::convertOn(&worker.executor());
    view->setMarkdown(QString(40'000, u'a'));
    // Here nothing waits for it.
    EXPECT_EQ(view->plainText(), QString{});
    worker.letGo();
    EXPECT_TRUE(spinUntil([this] { return view->plainText().size() == NoteDocument::mostCharacters; }));
    EXPECT_TRUE(view->isCut());
}

TEST_F(MarkdownWebViewTest, whatWasShownBeforeGoesAtOnce) {
    view->setMarkdown(u"the last company's"_s);
    HeldWorker worker;
    MarkdownWebView::convertOn(&worker.executor());
    view->setMarkdown(u"the next one's"_s);
    EXPECT_EQ(view->plainText(), QString{});
    EXPECT_TRUE(view->links().isEmpty());
    worker.letGo();
    EXPECT_TRUE(spinUntil([this] { return view->plainText() == u"the next one's"_s; }));
}

TEST_F(MarkdownWebViewTest, aNoteThatComesLateIsNotShownOverALaterOne) {
    HeldWorker worker;
    MarkdownWebView::convertOn(&worker.executor());
    view->setMarkdown(u"first"_s);
    MarkdownWebView::convertOn(nullptr);
    view->setMarkdown(u"second"_s);
    MarkdownWebView::convertOn(&worker.executor());
    // Converted behind the first.
    MarkdownWebView other;
    other.setMarkdown(u"third"_s);
    worker.letGo();
    ASSERT_TRUE(spinUntil([&other] { return other.plainText() == u"third"_s; }));
    EXPECT_EQ(view->plainText(), u"second"_s);
}

TEST_F(MarkdownWebViewTest, aViewMayGoBeforeItsNoteIsConverted) {
    HeldWorker worker;
    MarkdownWebView::convertOn(&worker.executor());
    auto gone = std::make_unique<MarkdownWebView>();
    gone->setMarkdown(u"first"_s);
    gone.reset();
    view->setMarkdown(u"second"_s);
    worker.letGo();
    EXPECT_TRUE(spinUntil([this] { return view->plainText() == u"second"_s; }));
}

// MARK: - Scrolling

TEST_F(MarkdownWebViewTest, keysMoveThePageAndStayWithinIt) {
    view->setMarkdown(longNote);
    view->forceActiveFocus();
    ASSERT_GT(view->contentHeight(), 600);
    const qreal end = view->contentHeight() - view->height();
    QTest::keyClick(&window, Qt::Key_Down);
    const qreal step = view->contentY();
    EXPECT_GT(step, 0);
    QTest::keyClick(&window, Qt::Key_Up);
    EXPECT_EQ(view->contentY(), 0);
    QTest::keyClick(&window, Qt::Key_Up);
    EXPECT_EQ(view->contentY(), 0);
    QTest::keyClick(&window, Qt::Key_PageDown);
    EXPECT_GT(view->contentY(), step);
    EXPECT_LT(view->contentY(), view->height());
    QTest::keyClick(&window, Qt::Key_End);
    EXPECT_EQ(view->contentY(), end);
    QTest::keyClick(&window, Qt::Key_PageUp);
    EXPECT_LT(view->contentY(), end);
    QTest::keyClick(&window, Qt::Key_Home);
    EXPECT_EQ(view->contentY(), 0);
}

TEST_F(MarkdownWebViewTest, theWheelMovesThePage) {
    view->setMarkdown(longNote);
    turnWheel(-120);
    EXPECT_GT(view->contentY(), 0);
    turnWheel(1200);
    EXPECT_EQ(view->contentY(), 0);
}

TEST_F(MarkdownWebViewTest, anotherNoteIsShownFromItsBeginning) {
    view->setMarkdown(longNote);
    view->setContentY(500);
    ASSERT_EQ(view->contentY(), 500);
    view->setMarkdown(longNote + u"x"_s);
    EXPECT_EQ(view->contentY(), 0);
}

TEST_F(MarkdownWebViewTest, aTableThatIsTooWideScrollsSideways) {
    view->setMarkdown(u"| cell "_s.repeated(60));
    ASSERT_GT(view->contentWidth(), view->width());
    view->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_GT(view->contentX(), 0);
}

TEST_F(MarkdownWebViewTest, zoomingMakesThePageLargerAndKeepsThePlace) {
    view->setMarkdown(longNote);
    const qreal height = view->contentHeight();
    view->setContentY(height / 2);
    view->setZoom(2);
    EXPECT_NEAR(view->contentHeight(), 2 * height, height / 10);
    EXPECT_NEAR(view->contentY() / view->contentHeight(), 0.5, 0.05);
    view->setZoom(0);
    EXPECT_EQ(view->zoom(), 2);
}

// MARK: - Selecting

TEST_F(MarkdownWebViewTest, textIsSelectedByMouseAndCopied) {
    view->setMarkdown(u"one **two** three"_s);
    QTest::mousePress(&window, Qt::LeftButton, {}, {17, 25});
    QTest::mouseMove(&window, {390, 25});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {390, 25});
    EXPECT_EQ(view->selectedText(), u"one two three"_s);
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"one two three"_s);
    QTest::mouseClick(&window, Qt::LeftButton, {}, {200, 200});
    EXPECT_EQ(view->selectedText(), QString{});
}

TEST_F(MarkdownWebViewTest, aDoubleClickSelectsAWord) {
    view->setMarkdown(u"wonderful"_s);
    QTest::mouseDClick(&window, Qt::LeftButton, {}, {30, 25});
    EXPECT_EQ(view->selectedText(), u"wonderful"_s);
}

TEST_F(MarkdownWebViewTest, everythingIsSelectedByKey) {
    view->setMarkdown(u"## A\n- b\n- c"_s);
    view->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view->selectedText().split(u'\n', Qt::SkipEmptyParts), (QStringList{u"A"_s, u"b"_s, u"c"_s}));
}

TEST_F(MarkdownWebViewTest, withoutASelectionTheClipboardStays) {
    view->setMarkdown(u"text"_s);
    QGuiApplication::clipboard()->setText(u"before"_s);
    view->copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"before"_s);
}

// MARK: - Links

TEST_F(MarkdownWebViewTest, aPressedLinkTellsItsAddress) {
    view->setMarkdown(u"**mail** jo@mail.example or +49 30 123456"_s);
    ASSERT_EQ(view->links().size(), 2);
    EXPECT_EQ(view->links()[0].toMap()[u"text"_s], u"jo@mail.example"_s);
    QTest::mouseClick(&window, Qt::LeftButton, {}, placeOfLink(0));
    QTest::mouseClick(&window, Qt::LeftButton, {}, placeOfLink(1));
    QTest::mouseClick(&window, Qt::LeftButton, {}, {200, 250});
    EXPECT_EQ(activated, (QStringList{u"mailto:jo@mail.example"_s, u"tel:+49 30 123456"_s}));
}

TEST_F(MarkdownWebViewTest, draggingOverALinkSelectsItAndOpensNothing) {
    view->setMarkdown(u"jo@mail.example"_s);
    const QPoint place = placeOfLink(0);
    QTest::mousePress(&window, Qt::LeftButton, {}, place);
    QTest::mouseMove(&window, place + QPoint{30, 0});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, place + QPoint{30, 0});
    EXPECT_FALSE(view->selectedText().isEmpty());
    EXPECT_TRUE(activated.isEmpty());
}

TEST_F(MarkdownWebViewTest, linksInTablesAreFoundWhereTheyStand) {
    view->setMarkdown(u"text\n\n| a | jo@mail.example |\n| b | c@d.org |"_s);
    ASSERT_EQ(view->links().size(), 2);
    QTest::mouseClick(&window, Qt::LeftButton, {}, placeOfLink(1));
    EXPECT_EQ(activated, QStringList{u"mailto:c@d.org"_s});
}

TEST_F(MarkdownWebViewTest, aLinkUnderThePointerIsUnderlined) {
    view->setMarkdown(u"jo@mail.example"_s);
    const QImage before = picture();
    QTest::mouseMove(&window, placeOfLink(0));
    EXPECT_EQ(view->hoveredLink(), u"mailto:jo@mail.example"_s);
    EXPECT_NE(picture(), before);
    QTest::mouseMove(&window, {200, 250});
    EXPECT_EQ(view->hoveredLink(), QString{});
    EXPECT_EQ(picture(), before);
}

TEST_F(MarkdownWebViewTest, thereIsABoundOnLinksForTheKeyboard) {
    view->setMarkdown(u"a@b.co "_s.repeated(1000));
    EXPECT_EQ(view->links().size(), MarkdownWebView::mostLinks);
}

// MARK: - Painting

TEST_F(MarkdownWebViewTest, theRowUnderThePointerStandsOut) {
    view->setMarkdown(u"| head |\n|---|\n| body |"_s);
    const QImage before = picture();
    const auto differsAt = [&](QPoint place) { return picture().pixel(place) != before.pixel(place); };
    const int body = static_cast<int>(view->contentHeight()) - 16 - 8 - 12;
    QTest::mouseMove(&window, {100, body});
    // As wide as the table, and no wider.
    for (const int x : {17, 300, 382})
        EXPECT_TRUE(differsAt({x, body})) << x;
    for (const int x : {14, 386})
        EXPECT_FALSE(differsAt({x, body})) << x;
    const int head = 16 + 8 + 12;
    QTest::mouseMove(&window, {100, head});
    EXPECT_EQ(picture(), before);
}

TEST_F(MarkdownWebViewTest, aHeadingOfLevelTwoHasALineBelow) {
    const auto linesIn = [](const QImage& image) {
        QList<int> lines;
        for (int y = 0; y < 80; ++y)
            if (image.pixel(390 - 16, y) != qRgb(0, 0, 0))
                lines.append(y);
        return lines;
    };
    view->setMarkdown(u"## A"_s);
    // Below the margin, a line of 24 and a distance of 4.
    EXPECT_EQ(linesIn(picture()), QList<int>{16 + 24 + 4});
    view->setMarkdown(u"### A"_s);
    EXPECT_EQ(linesIn(picture()), QList<int>{});
}

TEST_F(MarkdownWebViewTest, aTablesLinesLieBelowThePaddingAndEndWithTheTable) {
    view->setMarkdown(u"| a | b |\n|---|---|\n| 1 | 2 |\n| 3 | 4 |"_s);
    const QImage image = picture();
    const auto shows = [&](int x, int y) { return image.pixel(x, y) != qRgb(0, 0, 0); };
    int y = 0;
    while (y < 60 && !shows(360, y))
        ++y;
    // The ground of the head with its line, which lies on it, and below the others two paddings and a line of text.
    const int head = y;
    const int headHeight = 6 + 18 + 6;
    EXPECT_EQ(image.pixel(360, head), image.pixel(360, head + headHeight - 1));
    EXPECT_GT(qRed(image.pixel(360, head + headHeight)), qRed(image.pixel(360, head)));
    QList<int> lines;
    for (y = head + headHeight + 1; y < image.height(); ++y)
        if (shows(360, y))
            lines.append(y - head - headHeight);
    EXPECT_EQ(lines, (QList<int>{29, 58}));
    for (const int line : {headHeight, headHeight + 29}) {
        EXPECT_TRUE(shows(383, head + line)) << line;
        EXPECT_FALSE(shows(384, head + line)) << line;
    }
}

TEST_F(MarkdownWebViewTest, theLinesOfATableAreEquallyThickWhateverTheScale) {
    view->setMarkdown(u"| a | b |\n|---|---|\n"_s + u"| 1 | 2 |\n"_s.repeated(8));
    for (const qreal zoom : {1.0, 1.2, 0.83})
        for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
            view->setZoom(zoom);
            const QImage image = picture(ratio);
            // Right of the letters and below the head there is nothing but the lines of the rows.
            const int x = static_cast<int>(360 * ratio);
            std::vector<int> heights;
            for (int y = static_cast<int>(60 * zoom * ratio); y < image.height(); ++y) {
                const bool isLine = image.pixel(x, y) != qRgb(0, 0, 0);
                const bool wasLine = image.pixel(x, y - 1) != qRgb(0, 0, 0);
                if (isLine && !wasLine)
                    heights.push_back(0);
                if (isLine && !heights.empty())
                    ++heights.back();
            }
            ASSERT_GE(heights.size(), 5U) << zoom << ' ' << ratio;
            const int whole = std::max(1, static_cast<int>(std::round(zoom * ratio)));
            EXPECT_EQ(heights, std::vector(heights.size(), whole)) << zoom << ' ' << ratio;
        }
}

TEST_F(MarkdownWebViewTest, aRowsLineEndsWithItsLastCell) {
    view->setMarkdown(u"| a | b |\n|---|---|\n| 1 |"_s);
    const QImage image = picture();
    int y = static_cast<int>(view->contentHeight()) - 16 - 1;
    while (y > 60 && image.pixel(20, y) == qRgb(0, 0, 0))
        --y;
    ASSERT_GT(y, 60) << "a line below the row";
    EXPECT_NE(image.pixel(16, y), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(15, y), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(380, y), qRgb(0, 0, 0));
}

TEST_F(MarkdownWebViewTest, theGroundShowsThrough) {
    view->setMarkdown(u"text"_s);
    EXPECT_EQ(picture().pixel(5, 5), qRgb(0, 0, 0));
    EXPECT_EQ(view->fillColor().alpha(), 0);
}

}  // namespace corvellan::test
