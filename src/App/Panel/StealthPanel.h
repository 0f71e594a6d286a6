#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QMargins>
#include <QQuickView>
#include <QRect>
#include <QString>
#include <QTimer>

#include "Platform/CaptureHiding.h"

class QKeyEvent;

namespace corvellan {

class DesktopAppearance;
class Preferences;
class ViewStates;
class WindowActivation;
struct ViewParts;

/// The program's one main window. Between calls an ordinary window; in a call a borderless panel of a
/// fixed size that stays above others and can be hidden from screen capture.
///
/// The session's call-backs drive it: `onSessionActiveChanged` picks the face, `onStealthChanged` calls
/// `setStealth`, `onSessionModeChanged` calls `setSessionMode`. Closing hides it: the object and the
/// session live on. Needs `prepareQuick`. Main thread.
class StealthPanel : public QQuickView {
    Q_OBJECT

public:
    /// Builds the idle face. It is not shown yet. What is passed in, and what `parts` refers to, outlives it.
    StealthPanel(const ViewParts& parts, DesktopAppearance& appearance);
    ~StealthPanel() override;

    [[nodiscard]] bool isStealthEnabled() const { return m_isStealthEnabled; }
    [[nodiscard]] bool isInCallMode() const { return m_face == Face::call; }
    /// Whether captures show the window. It follows by itself when the desktop answers late.
    [[nodiscard]] CaptureVisibility captureVisibility() const { return m_captureHiding.status().visibility; }

    /// The window manager has answered what was asked of it, or has had the time to. Until then the next
    /// face hangs where this one was asked to be.
    [[nodiscard]] bool isSettled() const { return !m_asked; }

    /// What its screens show.
    [[nodiscard]] ViewStates& views() { return *m_views; }

    void enterCallMode();
    /// Makes the window capturable again and leaves the stealth flag alone: it applies at the next call.
    void enterIdleMode();
    /// Resizes for "mini", "coach" or, with any other word, the full layout.
    void setSessionMode(const QString& mode);
    /// Sets the flag and applies it at once, in either face.
    void setStealth(bool isEnabled);

    /// Shows the window on the screen of the pointer, in front, with the keyboard.
    void makeKeyAndOrderFront();
    /// The same from another program, as far as the desktop lets windows come forward.
    ///
    /// \param activationToken the desktop's proof that the user asked for it; may be empty.
    void bringToFront(WindowActivation& activation, const QString& activationToken = {});
    /// As `makeKeyAndOrderFront`, but the keyboard stays where it is.
    void orderFront();

    /// Runs `done` once, after the first frame that shows everything set until now. Not at all when the
    /// window is hidden: then there is no such frame, and the answer is false.
    bool afterNextFrame(std::function<void()> done);

Q_SIGNALS:
    /// The user pressed the close button, and the window has been hidden.
    void closedByUser();

protected:
    bool event(QEvent* event) override;

private:
    enum class Face { idle, call };
    enum class Sizing { fixed, resizable };

    /// Null when there is none at all.
    [[nodiscard]] const QScreen* itsScreen() const;
    [[nodiscard]] std::optional<QRect> availableGeometry() const;
    /// Marks the repeats of a held key, which X11 tells of as of a key that is let go and pressed again in
    /// the same instant; Qt finds only some of them. A key that has ended a call, still held, would
    /// begin the next.
    bool keyEvent(QKeyEvent& event);
    void applyStealth(bool isHidden);
    /// Between calls the window is light where the desktop asks for that.
    void followAppearance();
    /// The desktop may take a window that was hidden and shown for a new one.
    void applyStealthAnew();
    /// The window with what the window manager puts round it, as it was asked for last. What the platform
    /// reads while the window manager is at work mixes the place of one face with the title bar of the
    /// other, and a face change in the meantime would shift the window by that bar.
    [[nodiscard]] QRect frame() const;
    void place(QSize size, Sizing sizing, QRect present);
    void moveToActiveScreen();
    void moveFrame(QRect asked);
    void forgetWhatCame();

    struct KeyInstant {
        quint32 scanCode = 0;
        quint64 timestamp = 0;
        bool operator==(const KeyInstant&) const = default;
    };

    /// The scene shows it and goes first.
    std::unique_ptr<ViewStates> m_views;
    const Preferences& m_preferences;
    CaptureHiding& m_captureHiding;
    DesktopAppearance& m_appearance;
    Face m_face = Face::idle;
    /// The idle face's title bar and borders, as far as they are known.
    QMargins m_idleMargins;
    /// Absent once the window is there, or was given the time to be.
    std::optional<QRect> m_asked;
    QTimer m_settling;
    std::optional<KeyInstant> m_lastRelease;
    bool m_isStealthEnabled = false;
    bool m_isHiddenFromCapture = false;
};

}  // namespace corvellan
