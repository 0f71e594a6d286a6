#include "SettingsView.h"

#include <algorithm>
#include <array>
#include <QSysInfo>
#include <QUuid>

#include "Base/Preferences.h"
#include "Platform/Permissions.h"
#include "Platform/WebBrowser.h"
#include "Services/Protocols/UpdaterProtocol.h"
#include "Shell/LaunchAtLogin.h"
#include "Shell/MeetingReminder.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

struct FontSize {
    double scale;
    std::string_view label;
};

constexpr std::array fontSizeRows{
    FontSize{1.0, "Normal"},
    FontSize{1.5, "Large (1.5x)"},
    FontSize{2.0, "Extra Large (2x)"},
};

constexpr QStringView green = u"green";
constexpr QStringView gray = u"gray";
constexpr QStringView orange = u"orange";
constexpr QStringView red = u"red";

bool isMac() {
    return QSysInfo::kernelType() == u"darwin"_s;
}

}  // namespace

SettingsView::SettingsView(SessionViewModel& session, Preferences& preferences, SettingsParts parts, QObject* parent)
    : QObject(parent),
      m_session(session),
      m_preferences(preferences),
      m_parts(std::move(parts)),
      m_permissionRows({"label", "detail", "statusText", "statusColor"}, 2) {
    updatePermissionRows();
    connect(&session, &SessionViewModel::statusTextChanged, this, &SettingsView::statusChanged);
    connect(&session, &SessionViewModel::isConnectedChanged, this, &SettingsView::statusChanged);
    connect(&session, &SessionViewModel::userEmailChanged, this, &SettingsView::accountChanged);
    connect(&session, &SessionViewModel::serverURLChanged, this, &SettingsView::accountChanged);
    connect(&session, &SessionViewModel::fontScaleChanged, this, &SettingsView::fontSizeChanged);
    connect(&session, &SessionViewModel::isScreenShareEnabledChanged, this, &SettingsView::sharesScreenChanged);
    connect(&session, &SessionViewModel::sensorConnectedChanged, this, &SettingsView::sensorChanged);
    connect(&session, &SessionViewModel::extensionContextChanged, this, &SettingsView::sensorChanged);
    connect(&session, &SessionViewModel::extensionCallActiveChanged, this, &SettingsView::sensorChanged);
    connect(&session, &SessionViewModel::autoStartOnCallChanged, this, &SettingsView::autoStartOnCallChanged);
    connect(&session, &SessionViewModel::sparkleUpdaterChanged, this, &SettingsView::canCheckForUpdatesChanged);
}

SettingsView::~SettingsView() {
    m_self.reset();
    m_permissionTask.cancel();
    m_notificationTask.cancel();
    m_requestTask.cancel();
}

void SettingsView::appear() {
    Q_EMIT serverModeChanged();
    Q_EMIT customServerURLChanged();
    Q_EMIT launchesAtLoginChanged();
    Q_EMIT meetingRemindersChanged();
    refreshPermissions();
    refreshNotificationStatus();
    refreshVoice();
    applyServerURL();
}

// MARK: - Server

QStringList SettingsView::serverModes() {
    QStringList labels;
    for (const ServerModeRow& row : serverModeRows)
        labels.append(label(row.value));
    return labels;
}

ServerMode SettingsView::serverMode() const {
    return storedServerMode(m_preferences.string(u"serverMode"_s));
}

void SettingsView::setServerMode(ServerMode mode) {
    m_preferences.setString(u"serverMode"_s, tableText(rawValue(mode)));
    Q_EMIT serverModeChanged();
    applyServerURL();
}

void SettingsView::setServerModeIndex(int index) {
    if (index >= 0 && index < static_cast<int>(serverModeRows.size()))
        setServerMode(serverModeRows.at(static_cast<std::size_t>(index)).value);
}

QString SettingsView::customServerURL() const {
    return m_preferences.string(u"customServerURL"_s).value_or(QString{});
}

void SettingsView::setCustomServerURL(const QString& url) {
    m_preferences.setString(u"customServerURL"_s, url);
    Q_EMIT customServerURLChanged();
    applyServerURL();
}

void SettingsView::applyServerURL() {
    m_session.setServerURL(SessionViewModel::resolveURL(serverMode(), customServerURL(), m_parts.productionUrl));
    m_session.setAuthURL(m_parts.chatUrl);
}

QString SettingsView::statusText() const {
    return m_session.statusText();
}

QString SettingsView::connectionColor() const {
    return (m_session.isConnected() ? green : gray).toString();
}

// MARK: - Account

QString SettingsView::accountText() const {
    if (m_session.userEmail())
        return u"Signed in"_s;
    return m_session.isLocalServer() ? u"Dev mode (no auth required)"_s : u"Not signed in"_s;
}

QString SettingsView::accountColor() const {
    return m_session.isLoggedIn() ? QString{} : orange.toString();
}

QString SettingsView::userEmail() const {
    return m_session.userEmail().value_or(QString{});
}

bool SettingsView::canLogin() const {
    return !m_session.isLoggedIn();
}

bool SettingsView::canLogout() const {
    return m_session.userEmail().has_value();
}

void SettingsView::login() {
    m_session.login();
}

void SettingsView::logout() {
    m_session.logoutAction();
}

// MARK: - General, display, screen context

bool SettingsView::launchesAtLogin() const {
    return m_parts.launchAtLogin.isEnabled();
}

void SettingsView::setLaunchesAtLogin(bool launches) {
    m_parts.launchAtLogin.setEnabled(launches);
    Q_EMIT launchesAtLoginChanged();
}

QStringList SettingsView::fontSizes() {
    QStringList labels;
    for (const FontSize& size : fontSizeRows)
        labels.append(tableText(size.label));
    return labels;
}

int SettingsView::fontSizeIndex() const {
    const auto found = std::ranges::find(fontSizeRows, m_session.fontScale(), &FontSize::scale);
    return found == fontSizeRows.end() ? -1 : static_cast<int>(found - fontSizeRows.begin());
}

void SettingsView::setFontSizeIndex(int index) {
    if (index >= 0 && index < static_cast<int>(fontSizeRows.size()))
        m_session.setFontScale(fontSizeRows.at(static_cast<std::size_t>(index)).scale);
}

QString SettingsView::fontSizeText() const {
    const int index = fontSizeIndex();
    return index < 0 ? QString::number(m_session.fontScale()) + u'x' : fontSizes().at(index);
}

QString SettingsView::sharingText() const {
    QString text =
        u"Lets the coach see the frontmost window you're working on (HubSpot, deck, notes). Nothing is uploaded unless "
        "the screen changes, and frames are never written to disk."_s;
    if (m_parts.sharesWindows)
        return text;
    return text +
           u" This desktop shows programs no single windows: the coach sees your whole screen, and the desktop itself "
           "writes each picture to a file, which is removed at once."_s;
}

bool SettingsView::sharesScreen() const {
    return m_session.isScreenShareEnabled();
}

void SettingsView::setSharesScreen(bool shares) {
    m_session.setIsScreenShareEnabled(shares);
}

// MARK: - Browser extension

bool SettingsView::sensorConnected() const {
    return m_session.sensorConnected();
}

QString SettingsView::sensorText() const {
    return sensorConnected() ? u"Connected"_s : u"Not connected"_s;
}

QString SettingsView::sensorColor() const {
    return (sensorConnected() ? green : gray).toString();
}

QString SettingsView::viewingText() const {
    const auto& context = m_session.extensionContext();
    return sensorConnected() && context ? viewing(*context) : QString{};
}

bool SettingsView::showsCall() const {
    return sensorConnected() && m_session.extensionCallActive();
}

bool SettingsView::autoStartOnCall() const {
    return m_session.autoStartOnCall();
}

void SettingsView::setAutoStartOnCall(bool startsByItself) {
    m_session.setAutoStartOnCall(startsByItself);
}

void SettingsView::openExtensionPage() {
    static_cast<void>(CancellableTask::start(
        [&browser = m_parts.browser, page = QUrl{m_parts.extensionUrl}](std::stop_token) -> QCoro::Task<void> {
            // Nothing here reports a failure.
            static_cast<void>(co_await browser.open(page));
        }));
}

void SettingsView::checkSensorStatus() {
    m_session.checkSensorStatus();
}

QString SettingsView::viewing(const ExtensionContextPayload& context) {
    const QString contact = context.displayName.value_or(QString{});
    const QString company = context.companyName.value_or(QString{});
    if (contact.isEmpty())
        return company.isEmpty() ? context.entityType : company;
    return company.isEmpty() ? contact : contact + u" ("_s + company + u')';
}

// MARK: - Call detection

bool SettingsView::meetingReminders() const {
    return m_preferences.boolean(u"meetingReminders"_s).value_or(true);
}

void SettingsView::setMeetingReminders(bool reminds) {
    m_preferences.setBoolean(u"meetingReminders"_s, reminds);
    Q_EMIT meetingRemindersChanged();
}

QString SettingsView::hotkeyText() {
    return u"Cmd+Shift+J"_s;
}

QString SettingsView::hotkeyCaption() {
    return isMac() ? QString{} : u"Cmd is the Super key, the one with the logo."_s;
}

QString SettingsView::hotkeyNotice() const {
    if (m_keyWatch == GlobalKeyWatch::unavailable && m_keyExplanation.isEmpty())
        return u"Not available: key presses in other programs are not watched."_s;
    return m_keyExplanation;
}

QString SettingsView::hotkeyNoticeColor() const {
    return m_keyWatch == GlobalKeyWatch::unavailable ? orange.toString() : QString{};
}

void SettingsView::setGlobalKeyWatch(GlobalKeyWatch watch, const QString& explanation) {
    m_keyWatch = watch;
    m_keyExplanation = explanation;
    Q_EMIT hotkeyChanged();
}

void SettingsView::refreshNotificationStatus() {
    m_notificationTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        if (stop.stop_requested())
            co_return;
        const auto status = co_await m_parts.notifications.authorization();
        if (stop.stop_requested())
            co_return;
        m_notificationStatus = status;
        Q_EMIT notificationStatusChanged();
    });
}

void SettingsView::requestNotificationPermission() {
    m_requestTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        if (stop.stop_requested())
            co_return;
        co_await m_parts.notifications.requestAuthorization();
        if (!stop.stop_requested())
            refreshNotificationStatus();
    });
}

void SettingsView::sendTestNotification() {
    MeetingReminder reminder{.meetingId = u"test"_s, .summary = u"Test Meeting"_s, .company = u"Test Company"_s};
    if (const auto& meetings = m_session.upcomingMeetings(); !meetings.empty()) {
        const CalendarMeeting& first = meetings.front();
        reminder.meetingId = first.id;
        reminder.summary = first.summary;
        if (first.matchedCompany)
            reminder.company = first.matchedCompany->name;
    }
    reminder.show(m_parts.notifications, u"test-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces));
}

QString SettingsView::notificationStatusText(NotificationAuthorization status) {
    switch (status) {
    case NotificationAuthorization::notDetermined: return u"Not requested"_s;
    case NotificationAuthorization::denied: return u"Denied — enable in System Settings"_s;
    case NotificationAuthorization::authorized: return u"Enabled"_s;
    case NotificationAuthorization::provisional: return u"Provisional"_s;
    case NotificationAuthorization::unknown: return u"Unknown"_s;
    }
    // A platform may come to know more answers than these.
    return u"Unknown"_s;
}

QString SettingsView::notificationColor(NotificationAuthorization status) {
    if (status == NotificationAuthorization::authorized)
        return green.toString();
    return (status == NotificationAuthorization::denied ? red : orange).toString();
}

// MARK: - Voice

QString SettingsView::voiceText() {
    return isMac() ? u"Uses best installed macOS voice (premium > enhanced > default)"_s
                   : u"Uses best installed voice (premium > enhanced > default)"_s;
}

QString SettingsView::voiceCaption() const {
    if (isMac())
        return u"System Settings → Accessibility → Spoken Content → Manage Voices"_s;
    return m_voices ? speaking(*m_voices) : u"Looking for voices..."_s;
}

void SettingsView::refreshVoice() {
    if (isMac())
        return;
    m_parts.speech.readVoices(
        [&main = m_session.environment().main, weak = std::weak_ptr{m_self}](SpeechSynthesizer::Voices voices) {
            main.post([weak, voices = std::move(voices)] {
                const auto self = weak.lock();
                if (!self)
                    return;
                (*self)->m_voices = voices;
                Q_EMIT(*self)->voiceChanged();
            });
        });
}

QString SettingsView::speaking(const SpeechSynthesizer::Voices& voices) {
    const auto voice = voices.preferred();
    if (!voice)
        return u"No speech engine works on this computer. Install the package espeak-ng; until then replies are shown "
               "only."_s;
    switch (voice->quality) {
    case VoiceQuality::premium: return u"%1 speaks, with the voice %2 (premium)."_s.arg(voices.engine, voice->name);
    case VoiceQuality::enhanced: return u"%1 speaks, with the voice %2 (enhanced)."_s.arg(voices.engine, voice->name);
    case VoiceQuality::standard:
        return u"%1 speaks, with its default voice: no premium or enhanced one is installed."_s.arg(voices.engine);
    }
    Q_UNREACHABLE();
}

// MARK: - Permissions

void SettingsView::refreshPermissions() {
    m_permissionTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        if (stop.stop_requested())
            co_return;
        const auto microphone = co_await m_parts.permissions.checkMicrophone();
        if (stop.stop_requested())
            co_return;
        m_permissionState.microphone = microphone;
        updatePermissionRows();
        // Slower: the desktop may ask the user.
        const auto screenRecording = co_await m_parts.permissions.checkScreenRecording();
        if (stop.stop_requested())
            co_return;
        m_permissionState.screenRecording = screenRecording;
        updatePermissionRows();
    });
}

void SettingsView::updatePermissionRows() {
    std::vector<FixedRowsModel::Row> rows;
    for (const PermissionRow& row :
         {PermissionRow{u"Microphone"_s, u"Your voice"_s, m_permissionState.microphone},
          PermissionRow{u"Screen Recording"_s, u"Customer voice (Zoom/Meet)"_s, m_permissionState.screenRecording}})
        rows.push_back({row.label, row.detail, row.statusText(), row.statusColor()});
    m_permissionRows.assign(rows);
}

void SettingsView::openSystemSettings() {
    m_parts.systemSettings.openPrivacyPane(PrivacyPane::screenCapture);
}

// MARK: - About

QString SettingsView::aboutText() {
    return u"Corvellan Bram — AI sales coach by Teskara. Invisible during screen share, real-time MEDDIC tracking "
           "and call guidance."_s;
}

bool SettingsView::canCheckForUpdates() const {
    return m_session.sparkleUpdater() != nullptr;
}

void SettingsView::checkForUpdates() {
    if (canCheckForUpdates())
        m_session.sparkleUpdater()->checkForUpdates();
}

}  // namespace corvellan
