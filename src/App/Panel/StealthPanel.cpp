#include "StealthPanel.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QScreen>

#include "Base/Preferences.h"
#include "PanelGeometry.h"
#include "Platform/DesktopAppearance.h"
#include "Platform/WindowActivation.h"
#include "Views/QuickSetup.h"
#include "Views/ViewStates.h"

namespace corvellan {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// No buttons to minimise or maximise, on purpose: the window is hidden, never minimised.
constexpr Qt::WindowFlags idleFlags =
    Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
constexpr Qt::WindowFlags callFlags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;

constexpr QPoint firstOrigin{100, 100};

// A window manager has long answered by then, or never will.
constexpr auto settlingTime = 1s;

}  // namespace

StealthPanel::StealthPanel(const ViewParts& parts, DesktopAppearance& appearance)
    : m_views(std::make_unique<ViewStates>(
          parts, [this](std::function<void()> painted) { return afterNextFrame(std::move(painted)); })),
      m_preferences(parts.preferences),
      m_captureHiding(parts.captureHiding),
      m_appearance(appearance) {
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingTime);
    connect(&m_settling, &QTimer::timeout, this, [this] { m_asked.reset(); });
    setTitle(u"Corvellan Bram"_s);
    // A window that is opaque when it is made stays so for good; the idle face paints its own ground.
    setColor(Qt::transparent);
    setFlags(idleFlags);
    setMinimumSize(panel::idleMinimumSize);
    setMaximumSize(panel::idleMaximumSize);
    setGeometry(QRect{firstOrigin, panel::idleSize});

    m_appearance.onChanged = [this] { followAppearance(); };
    followAppearance();
    setResizeMode(QQuickView::SizeRootObjectToView);
    engine()->addImportPath(QString::fromLatin1(qmlImportPath));
    setInitialProperties({{u"views"_s, QVariant::fromValue(m_views.get())}});
    setSource(QUrl{u"qrc:/qt/qml/Corvellan/Views/Main.qml"_s});
}

StealthPanel::~StealthPanel() {
    m_appearance.onChanged = {};
    // The scene goes before what it shows: its bindings read the view states to the end.
    setSource(QUrl{});
}

void StealthPanel::enterCallMode() {
    const QRect present = frame();
    if (const QMargins margins = frameMargins(); m_face == Face::idle && !margins.isNull())
        m_idleMargins = margins;
    m_face = Face::call;
    setFlags(callFlags);
    applyStealth(m_isStealthEnabled);
    place(panel::callSize, Sizing::fixed, present);
}

void StealthPanel::enterIdleMode() {
    const QRect present = frame();
    m_face = Face::idle;
    setFlags(idleFlags);
    applyStealth(false);
    place(panel::idleSize, Sizing::resizable, present);
}

void StealthPanel::setSessionMode(const QString& mode) {
    place(panel::sessionSize(mode, m_preferences.number(u"fontScale"_s)), Sizing::fixed, frame());
}

void StealthPanel::setStealth(bool isEnabled) {
    m_isStealthEnabled = isEnabled;
    applyStealth(isEnabled);
}

void StealthPanel::makeKeyAndOrderFront() {
    moveToActiveScreen();
    setProperty("_q_showWithoutActivating", false);
    show();
    raise();
    requestActivate();
}

void StealthPanel::bringToFront(WindowActivation& activation, const QString& activationToken) {
    makeKeyAndOrderFront();
    activation.activateIgnoringOtherApps(*this, activationToken);
}

void StealthPanel::orderFront() {
    moveToActiveScreen();
    setProperty("_q_showWithoutActivating", true);
    show();
    raise();
}

bool StealthPanel::afterNextFrame(std::function<void()> done) {
    if (!isExposed())
        return false;
    connect(this, &QQuickWindow::frameSwapped, this, std::move(done), Qt::SingleShotConnection);
    update();
    return true;
}

bool StealthPanel::event(QEvent* event) {
    if (event->type() == QEvent::Close) {
        event->ignore();
        hide();
        Q_EMIT closedByUser();
        return true;
    }
    if (event->type() == QEvent::Show)
        applyStealthAnew();
    const bool isTaken = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease
                             ? keyEvent(static_cast<QKeyEvent&>(*event))
                             : QQuickView::event(event);
    forgetWhatCame();
    return isTaken;
}

bool StealthPanel::keyEvent(QKeyEvent& event) {
    const KeyInstant instant{event.nativeScanCode(), event.timestamp()};
    if (event.type() == QEvent::KeyRelease) {
        m_lastRelease = instant;
    } else if (!event.isAutoRepeat() && m_lastRelease == instant) {
        constexpr bool isAutoRepeat = true;
        QKeyEvent repeat{event.type(),
                         event.key(),
                         event.modifiers(),
                         event.nativeScanCode(),
                         event.nativeVirtualKey(),
                         event.nativeModifiers(),
                         event.text(),
                         isAutoRepeat,
                         static_cast<quint16>(event.count()),
                         event.device()};
        repeat.setTimestamp(event.timestamp());
        const bool isTaken = QQuickView::event(&repeat);
        event.setAccepted(repeat.isAccepted());
        return isTaken;
    }
    return QQuickView::event(&event);
}

void StealthPanel::forgetWhatCame() {
    if (m_asked && *m_asked == frameGeometry())
        m_asked.reset();
}

QRect StealthPanel::frame() const {
    return m_asked.value_or(frameGeometry());
}

const QScreen* StealthPanel::itsScreen() const {
    // By its place: the platform names another screen only when the window has got there, and a face
    // change in the meantime would send it back.
    if (const QScreen* const there = QGuiApplication::screenAt(frame().center()))
        return there;
    return screen() ? screen() : QGuiApplication::primaryScreen();
}

std::optional<QRect> StealthPanel::availableGeometry() const {
    const QScreen* const present = itsScreen();
    return present ? std::optional{present->availableGeometry()} : std::nullopt;
}

void StealthPanel::applyStealth(bool isHidden) {
    m_isHiddenFromCapture = isHidden;
    m_captureHiding.setHidden(*this, isHidden);
}

void StealthPanel::applyStealthAnew() {
    if (m_isHiddenFromCapture)
        m_captureHiding.setHidden(*this, true);
}

void StealthPanel::followAppearance() {
    m_views->theme()->setIsDark(m_appearance.colorScheme() != ColorScheme::light);
}

void StealthPanel::place(QSize size, Sizing sizing, QRect present) {
    setMinimumSize(sizing == Sizing::fixed ? size : panel::idleMinimumSize);
    setMaximumSize(sizing == Sizing::fixed ? size : panel::idleMaximumSize);
    resize(size);
    const QSize framed = m_face == Face::idle ? size.grownBy(m_idleMargins) : size;
    moveFrame({panel::centeredOrigin(framed, present, availableGeometry()), framed});
}

void StealthPanel::moveToActiveScreen() {
    const QScreen* const active = QGuiApplication::screenAt(QCursor::pos());
    if (!active || active == itsScreen())
        return;
    const QSize framed = frame().size();
    moveFrame({panel::middleOrigin(framed, active->availableGeometry()), framed});
}

void StealthPanel::moveFrame(QRect asked) {
    m_asked = asked;
    m_settling.start();
    setFramePosition(asked.topLeft());
    forgetWhatCame();
}

}  // namespace corvellan
