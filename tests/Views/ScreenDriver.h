#pragma once

#include <memory>
#include <QObject>
#include <QQuickItem>
#include <QRectF>
#include <QString>
#include <QVariantMap>

#include "FakeHandoffWindow.h"
#include "Support/SessionFixture.h"
#include "Support/SettingsFixture.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

/// Gives QML tests view states over a session of fakes, and the hand to change what they show.
class ScreenDriver : public QObject {
    Q_OBJECT
    /// What the window's content is handed.
    Q_PROPERTY(QObject* views READ views NOTIFY madeAnew)

public:
    ScreenDriver();
    ~ScreenDriver() override;

    [[nodiscard]] QObject* views();

    /// Forgets everything; call before the screens of a test are made.
    Q_INVOKABLE void reset();
    /// The same, but for a user who has just signed in for the first time.
    Q_INVOKABLE void resetAsNewUser(const QString& email);
    Q_INVOKABLE void startCall(const QString& company);
    /// From now on a start gets no further than connecting.
    Q_INVOKABLE void holdConnecting();
    Q_INVOKABLE void goLive();
    Q_INVOKABLE void stopCall();
    /// The words are those of the protocol's tables; an empty kind or urgency means none.
    Q_INVOKABLE void tip(const QString& kind, const QString& urgency, const QString& message);
    Q_INVOKABLE void setStatus(const QString& text);
    Q_INVOKABLE void setMode(const QString& mode);
    Q_INVOKABLE void setEvidence(int criterion, const QString& text);
    Q_INVOKABLE void setJustConfirmed(int criterion);
    Q_INVOKABLE void setBrief(const QString& text);
    Q_INVOKABLE void setHandoff(const QString& note);
    Q_INVOKABLE void setError(const QString& text);
    Q_INVOKABLE void setSpeaking(bool isSpeaking);
    Q_INVOKABLE void setFontScale(double scale);
    Q_INVOKABLE void setProductHint(const QString& text);
    Q_INVOKABLE void setPhase(const QString& phase);

    /// What the desktop offers for hiding the window, by the cases' names, with a sentence.
    Q_INVOKABLE void setHidingOffer(const QString& offer, const QString& explanation);
    /// What has come of hiding it, by the cases' names, with a sentence.
    Q_INVOKABLE void setCaptureVisibility(const QString& visibility, const QString& explanation);
    Q_INVOKABLE void setStealth(bool isOn);

    /// Lays everything out that waits for it, and draws. \return where `item` then lies in its window
    Q_INVOKABLE [[nodiscard]] QRectF placeAfterLayout(QQuickItem* item) const;
    /// Has the window of `item` draw itself anew soon.
    Q_INVOKABLE void askForFrame(QQuickItem* item) const;

    Q_INVOKABLE [[nodiscard]] bool isStealthOn();
    // How things stand in the settings. Empty texts mean none.
    Q_INVOKABLE void setUser(const QString& email);
    Q_INVOKABLE void setConnected(bool isConnected);
    Q_INVOKABLE void setSensor(bool isConnected, const QString& contact, const QString& company, bool hasCall);
    Q_INVOKABLE void setKeyWatch(bool isWatching, const QString& explanation);
    /// What the desktop answers from now on: "authorized", "denied" or "not determined".
    Q_INVOKABLE void setPermissions(const QString& microphone, bool canSeeScreen);
    /// What comes of asking for the microphone.
    Q_INVOKABLE void setMicrophoneAnswer(bool isGranted);
    Q_INVOKABLE void setNotifications(const QString& authorization);
    /// Who speaks from now on, with an enhanced voice.
    Q_INVOKABLE void setVoice(const QString& engine, const QString& name);
    Q_INVOKABLE void refuseLoginItems();
    Q_INVOKABLE void setLoginItem(bool isRegistered);
    Q_INVOKABLE void provideUpdater();
    Q_INVOKABLE void offerUpdate();
    Q_INVOKABLE void setElapsed(int seconds);
    Q_INVOKABLE void setMicrophoneLevel(double level);
    Q_INVOKABLE void setSystemLevel(double level);
    /// \param source 0 for the user, 1 for the other party, 2 for the coach.
    Q_INVOKABLE void say(int source, const QString& text);
    Q_INVOKABLE void setStreaming(const QString& text);
    Q_INVOKABLE void setWaiting(bool isWaiting);
    Q_INVOKABLE void setBuyer(const QString& type);
    Q_INVOKABLE void useProductionServer();
    Q_INVOKABLE void setDark(bool isDark);
    Q_INVOKABLE void requestTab(const QString& tab);
    /// What is stored under `key`, as text; undefined when nothing is.
    Q_INVOKABLE [[nodiscard]] QVariant stored(const QString& key) const;
    /// What the file of the user's note holds; undefined when there is none.
    Q_INVOKABLE [[nodiscard]] QVariant noteFile() const;
    Q_INVOKABLE void setNoteFile(const QString& text);
    /// Turns the clock's hands on, with all that falls due.
    Q_INVOKABLE void passTime(int milliseconds);
    Q_INVOKABLE [[nodiscard]] QString serverURL();
    Q_INVOKABLE [[nodiscard]] bool isLoginItem() const;
    /// The lines that the desktop's configuration needs; before the screen is made.
    Q_INVOKABLE void setHidingAdvice(const QString& lines);
    /// How often something was asked of a service or of the desktop, by its name in their log.
    Q_INVOKABLE [[nodiscard]] int asked(const QString& step) const;
    Q_INVOKABLE [[nodiscard]] int updateChecks() const;
    Q_INVOKABLE [[nodiscard]] QString openedPage() const;
    Q_INVOKABLE [[nodiscard]] QString clipboard() const;
    /// The name, the description and the role of `item` as a screen reader has them, and whether it is checked.
    Q_INVOKABLE [[nodiscard]] QVariantMap spoken(QObject* item) const;

    Q_INVOKABLE [[nodiscard]] bool isSessionActive();
    Q_INVOKABLE [[nodiscard]] int connectionsAsked() const;
    Q_INVOKABLE [[nodiscard]] int handoffsShown() const;
    Q_INVOKABLE [[nodiscard]] bool wasSessionEnded() const;
    /// Presses the mouse twice in quick succession where `item` is, whatever is there by the second time.
    Q_INVOKABLE void pressTwice(QQuickItem* item) const;
    /// What comes while a key is held.
    Q_INVOKABLE void repeatKey(QObject* window, int key);
    /// The accessibility interface's own view of `item`: presses it as a screen reader does.
    Q_INVOKABLE bool pressThroughAccessibility(QObject* item);
    /// Writes a text as a screen reader does.
    Q_INVOKABLE bool writeThroughAccessibility(QObject* item, const QString& text);

Q_SIGNALS:
    void madeAnew();

private:
    struct World;
    SessionViewModel& session();

    std::unique_ptr<World> m_world;
};

}  // namespace corvellan::test
