#include "FloatingHandoffWindow.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QScreen>
#include <utility>

#include "Models/Briefing.h"
#include "Views/QuickSetup.h"
#include "Views/Theme.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize contentSize{520, 600};
constexpr QSize leastSize{400, 240};
constexpr Qt::WindowFlags floatingFlags =
    Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
    Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint;

/// The screen that the user works on.
const QScreen* activeScreen() {
    if (const QWindow* const active = QGuiApplication::focusWindow())
        return active->screen();
    const QScreen* const pointed = QGuiApplication::screenAt(QCursor::pos());
    return pointed ? pointed : QGuiApplication::primaryScreen();
}

}  // namespace

class FloatingHandoffWindow::Window final : public QQuickView {
public:
    Window() {
        setTitle(u"AE Handoff"_s);
        setFlags(floatingFlags);
        setResizeMode(QQuickView::SizeRootObjectToView);
        setMinimumSize(leastSize);
        setColor(m_theme.windowBackground());
        engine()->addImportPath(QString::fromLatin1(qmlImportPath));
        resize(contentSize);
        if (const QScreen* const screen = activeScreen()) {
            QRect middle{{}, contentSize};
            middle.moveCenter(screen->availableGeometry().center());
            setPosition(middle.topLeft());
        }
    }
    ~Window() override {
        // The scene goes before what it shows.
        setSource({});
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void setContent(std::unique_ptr<HandoffWindowView> content) {
        setSource({});
        m_content = std::move(content);
        setInitialProperties(
            {{u"handoff"_s, QVariant::fromValue(m_content.get())}, {u"theme"_s, QVariant::fromValue(&m_theme)}});
        setSource(QUrl{u"qrc:/qt/qml/Corvellan/Views/HandoffWindowScreen.qml"_s});
    }

    void bringToFront() {
        setWindowStates(windowStates() & ~Qt::WindowMinimized);
        setVisible(true);
        raise();
        requestActivate();
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::Close)
            return QQuickView::event(event);
        // A window that is really closed loses its place.
        event->ignore();
        hide();
        return true;
    }

private:
    Theme m_theme;
    std::unique_ptr<HandoffWindowView> m_content;
};

FloatingHandoffWindow::FloatingHandoffWindow(WebBrowser& browser, CrmAddress crm)
    : m_browser(browser),
      m_crm(std::move(crm)) {}

FloatingHandoffWindow::~FloatingHandoffWindow() = default;

void FloatingHandoffWindow::show(const HandoffResponse& handoff) {
    if (!m_window)
        m_window = std::make_unique<Window>();
    m_window->setContent(std::make_unique<HandoffWindowView>(handoff, m_browser, m_crm, [this] { close(); }));
    m_window->bringToFront();
}

void FloatingHandoffWindow::close() {
    if (!m_window)
        return;
    m_window->hide();
    // The wish may come from inside it.
    m_window.release()->deleteLater();
}

QQuickView* FloatingHandoffWindow::window() const {
    return m_window.get();
}

}  // namespace corvellan
