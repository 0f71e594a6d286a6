#pragma once

#include <memory>
#include <optional>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QStringList>

#include "Base/Tasks.h"
#include "FixedRowsModel.h"
#include "Models/Protocol.h"
#include "PermissionRow.h"
#include "Platform/GlobalKeys.h"
#include "Platform/Notifications.h"
#include "Platform/SpeechSynthesizer.h"
#include "Shell/PermissionChecker.h"
#include "ViewModels/ServerMode.h"

namespace corvellan {

class LaunchAtLogin;
class Preferences;
class SessionViewModel;
class SystemSettings;
class WebBrowser;

/// What the settings screen needs besides the session and the preferences. What it refers to outlives the view.
struct SettingsParts {
    PermissionChecker& permissions;
    LaunchAtLogin& launchAtLogin;
    NotificationCenter& notifications;
    SystemSettings& systemSettings;
    WebBrowser& browser;
    SpeechSynthesizer& speech;

    // What the program was built with.
    QString productionUrl;  ///< The coaching endpoint.
    QString chatUrl;        ///< The chat/briefings back-end.
    QString extensionUrl;   ///< Where the browser extension is to be had.
    QString version;        ///< The short version string.
    QString build;

    /// The coach gets the active window; otherwise the whole screen is all that can be shared.
    bool sharesWindows = true;
};

/// View state of the settings. Every change is stored and applied at once. Colours are told by name: "green",
/// "gray", "orange" or "red"; an empty one means the colour of ordinary text. Main thread.
class SettingsView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    // Server
    Q_PROPERTY(QStringList serverModes READ serverModes CONSTANT)
    /// Index into `serverModes`.
    Q_PROPERTY(int serverModeIndex READ serverModeIndex WRITE setServerModeIndex NOTIFY serverModeChanged)
    Q_PROPERTY(bool isCustomServer READ isCustomServer NOTIFY serverModeChanged)
    Q_PROPERTY(QString customServerURL READ customServerURL WRITE setCustomServerURL NOTIFY customServerURLChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusChanged)
    Q_PROPERTY(QString connectionColor READ connectionColor NOTIFY statusChanged)

    // Account
    Q_PROPERTY(QString accountText READ accountText NOTIFY accountChanged)
    Q_PROPERTY(QString accountColor READ accountColor NOTIFY accountChanged)
    /// The user's address; empty for nobody.
    Q_PROPERTY(QString userEmail READ userEmail NOTIFY accountChanged)
    Q_PROPERTY(bool canLogin READ canLogin NOTIFY accountChanged)
    Q_PROPERTY(bool canLogout READ canLogout NOTIFY accountChanged)

    // General
    Q_PROPERTY(bool launchesAtLogin READ launchesAtLogin WRITE setLaunchesAtLogin NOTIFY launchesAtLoginChanged)

    // Display
    Q_PROPERTY(QStringList fontSizes READ fontSizes CONSTANT)
    /// Index into `fontSizes`; -1 for a scale that is none of them.
    Q_PROPERTY(int fontSizeIndex READ fontSizeIndex WRITE setFontSizeIndex NOTIFY fontSizeChanged)
    Q_PROPERTY(QString fontSizeText READ fontSizeText NOTIFY fontSizeChanged)

    // Screen context
    Q_PROPERTY(bool sharesScreen READ sharesScreen WRITE setSharesScreen NOTIFY sharesScreenChanged)
    /// What that means, and what is different about it on this desktop.
    Q_PROPERTY(QString sharingText READ sharingText CONSTANT)

    // Browser extension
    Q_PROPERTY(bool sensorConnected READ sensorConnected NOTIFY sensorChanged)
    Q_PROPERTY(QString sensorText READ sensorText NOTIFY sensorChanged)
    Q_PROPERTY(QString sensorColor READ sensorColor NOTIFY sensorChanged)
    /// Who is on the extension's page; empty without a connection or a page.
    Q_PROPERTY(QString viewingText READ viewingText NOTIFY sensorChanged)
    Q_PROPERTY(bool showsCall READ showsCall NOTIFY sensorChanged)
    Q_PROPERTY(bool autoStartOnCall READ autoStartOnCall WRITE setAutoStartOnCall NOTIFY autoStartOnCallChanged)

    // Call detection
    Q_PROPERTY(bool meetingReminders READ meetingReminders WRITE setMeetingReminders NOTIFY meetingRemindersChanged)
    Q_PROPERTY(QString hotkeyText READ hotkeyText CONSTANT)
    Q_PROPERTY(QString hotkeyCaption READ hotkeyCaption CONSTANT)
    /// What the desktop makes of the key; empty when there is nothing to say.
    Q_PROPERTY(QString hotkeyNotice READ hotkeyNotice NOTIFY hotkeyChanged)
    Q_PROPERTY(QString hotkeyNoticeColor READ hotkeyNoticeColor NOTIFY hotkeyChanged)
    Q_PROPERTY(QString notificationStatusText READ notificationStatusText NOTIFY notificationStatusChanged)
    Q_PROPERTY(QString notificationColor READ notificationColor NOTIFY notificationStatusChanged)

    // Voice
    Q_PROPERTY(QString voiceText READ voiceText CONSTANT)
    /// Who speaks, or that nobody does.
    Q_PROPERTY(QString voiceCaption READ voiceCaption NOTIFY voiceChanged)

    /// Rows with "label", "detail", "statusText" and "statusColor".
    Q_PROPERTY(QAbstractItemModel* permissionRows READ permissionRows CONSTANT)

    // About
    Q_PROPERTY(QString aboutText READ aboutText CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString build READ build CONSTANT)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)

public:
    /// Session and preferences outlive the object.
    SettingsView(SessionViewModel& session, Preferences& preferences, SettingsParts parts, QObject* parent = nullptr);
    ~SettingsView() override;

    /// The screen has appeared: applies the stored server anew and reads what may have changed outside.
    Q_INVOKABLE void appear();

    [[nodiscard]] static QStringList serverModes();
    [[nodiscard]] ServerMode serverMode() const;
    void setServerMode(ServerMode mode);
    [[nodiscard]] int serverModeIndex() const { return static_cast<int>(serverMode()); }
    void setServerModeIndex(int index);
    [[nodiscard]] bool isCustomServer() const { return serverMode() == ServerMode::custom; }
    [[nodiscard]] QString customServerURL() const;
    void setCustomServerURL(const QString& url);
    /// Points the session to the chosen server, and its sign-in to the chat back-end in every mode.
    void applyServerURL();
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QString connectionColor() const;

    [[nodiscard]] QString accountText() const;
    [[nodiscard]] QString accountColor() const;
    [[nodiscard]] QString userEmail() const;
    [[nodiscard]] bool canLogin() const;
    [[nodiscard]] bool canLogout() const;
    Q_INVOKABLE void login();
    Q_INVOKABLE void logout();

    [[nodiscard]] bool launchesAtLogin() const;
    /// Shows afterwards what really holds: the desktop may refuse.
    void setLaunchesAtLogin(bool launches);

    [[nodiscard]] static QStringList fontSizes();
    [[nodiscard]] int fontSizeIndex() const;
    void setFontSizeIndex(int index);
    [[nodiscard]] QString fontSizeText() const;

    [[nodiscard]] bool sharesScreen() const;
    [[nodiscard]] QString sharingText() const;
    void setSharesScreen(bool shares);

    [[nodiscard]] bool sensorConnected() const;
    [[nodiscard]] QString sensorText() const;
    [[nodiscard]] QString sensorColor() const;
    [[nodiscard]] QString viewingText() const;
    [[nodiscard]] bool showsCall() const;
    [[nodiscard]] bool autoStartOnCall() const;
    void setAutoStartOnCall(bool startsByItself);
    Q_INVOKABLE void openExtensionPage();
    /// Asks the server once, at once.
    Q_INVOKABLE void checkSensorStatus();

    /// On where nothing was chosen.
    [[nodiscard]] bool meetingReminders() const;
    void setMeetingReminders(bool reminds);
    [[nodiscard]] static QString hotkeyText();
    [[nodiscard]] static QString hotkeyCaption();
    [[nodiscard]] QString hotkeyNotice() const;
    [[nodiscard]] QString hotkeyNoticeColor() const;
    /// What the monitor of keys in other programs says; told anew after each change. Until then nothing
    /// watches.
    void setGlobalKeyWatch(GlobalKeyWatch watch, const QString& explanation);

    void refreshNotificationStatus();
    [[nodiscard]] QString notificationStatusText() const { return notificationStatusText(m_notificationStatus); }
    [[nodiscard]] QString notificationColor() const { return notificationColor(m_notificationStatus); }
    Q_INVOKABLE void requestNotificationPermission();
    /// Shows the reminder of the first meeting at once, or of a made-up one.
    Q_INVOKABLE void sendTestNotification();

    [[nodiscard]] static QString voiceText();
    [[nodiscard]] QString voiceCaption() const;
    void refreshVoice();

    void refreshPermissions();
    [[nodiscard]] const PermissionState& permissionState() const { return m_permissionState; }
    [[nodiscard]] FixedRowsModel* permissionRows() { return &m_permissionRows; }
    Q_INVOKABLE void openSystemSettings();

    [[nodiscard]] static QString aboutText();
    [[nodiscard]] QString version() const { return m_parts.version; }
    [[nodiscard]] QString build() const { return m_parts.build; }
    [[nodiscard]] bool canCheckForUpdates() const;
    Q_INVOKABLE void checkForUpdates();

    // The rules, pure.

    [[nodiscard]] static QString notificationStatusText(NotificationAuthorization status);
    [[nodiscard]] static QString notificationColor(NotificationAuthorization status);
    /// "Sandra Weiss (Nordwind)"; what is missing is left out.
    [[nodiscard]] static QString viewing(const ExtensionContextPayload& context);
    /// Which of these voices speaks, in one sentence.
    [[nodiscard]] static QString speaking(const SpeechSynthesizer::Voices& voices);

Q_SIGNALS:
    void serverModeChanged();
    void customServerURLChanged();
    void statusChanged();
    void accountChanged();
    void launchesAtLoginChanged();
    void fontSizeChanged();
    void sharesScreenChanged();
    void sensorChanged();
    void autoStartOnCallChanged();
    void meetingRemindersChanged();
    void hotkeyChanged();
    void notificationStatusChanged();
    void voiceChanged();
    void canCheckForUpdatesChanged();

private:
    void updatePermissionRows();

    SessionViewModel& m_session;
    Preferences& m_preferences;
    SettingsParts m_parts;
    PermissionState m_permissionState;
    NotificationAuthorization m_notificationStatus = NotificationAuthorization::notDetermined;
    GlobalKeyWatch m_keyWatch = GlobalKeyWatch::unavailable;
    QString m_keyExplanation;
    FixedRowsModel m_permissionRows;
    /// Absent until the first answer.
    std::optional<SpeechSynthesizer::Voices> m_voices;
    /// Its end is this object's: voices are told on a thread of their own.
    std::shared_ptr<SettingsView*> m_self = std::make_shared<SettingsView*>(this);
    TaskSlot m_permissionTask;
    TaskSlot m_notificationTask;
    TaskSlot m_requestTask;
};

}  // namespace corvellan
