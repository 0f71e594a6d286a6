#include "SessionViewModel.h"

#include <QFile>
#include <QPointer>

#include "Models/AuthTokens.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

double storedFontScale(const Preferences& preferences) {
    const double stored = preferences.number(u"fontScale"_s).value_or(0);
    return stored > 0 ? stored : 1.5;
}

AudienceType storedCoachingMode(const Preferences& preferences) {
    const auto stored = preferences.string(u"coachingMode"_s).value_or(QString{}).toStdString();
    return audienceType(stored).value_or(AudienceType::directSale);
}

std::optional<AuthTokens> cachedTokens(const QString& filePath) {
    QFile file{filePath};
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    auto tokens = AuthTokens::decode(file.read(AuthTokens::maxFileBytes));
    return tokens ? std::optional{std::move(*tokens)} : std::nullopt;
}

}  // namespace

SessionViewModel::SessionViewModel(SessionEnvironment environment, std::unique_ptr<WebSocketServiceProtocol> webSocket,
                                   std::unique_ptr<AudioServiceProtocol> audio, std::unique_ptr<SttServiceProtocol> stt,
                                   std::unique_ptr<AuthServiceProtocol> auth)
    : m_environment(std::move(environment)) {
    const auto& preferences = m_environment.preferences;
    m_fontScale = storedFontScale(preferences);
    m_autoStartOnCall = preferences.boolean(u"autoStartOnCall"_s).value_or(true);
    m_coachingMode = storedCoachingMode(preferences);
    m_isScreenShareEnabled = preferences.boolean(u"screenShareEnabled"_s).value_or(false);
    m_lastRealTranscriptTime = m_environment.clock.wallNow();
    m_serverURL = m_environment.productionUrl;
    m_authURL = m_environment.chatUrl;

    m_screenShare = m_environment.services.makeScreenShare();
    m_tts = m_environment.services.makeTts();
    m_systemAudio = m_environment.services.makeSystemAudio();
    m_systemStt = m_environment.services.makeStt();
    m_webSocket = std::move(webSocket);
    m_audio = std::move(audio);
    m_stt = std::move(stt);
    m_auth = std::move(auth);

    m_tts->setOnPlayingChanged([weak = QPointer{this}](bool isPlaying) {
        if (weak)
            weak->onTtsPlayingChanged(isPlaying);
    });

    m_serverURL = resolveURL(storedServerMode(preferences.string(u"serverMode"_s)),
                             preferences.string(u"customServerURL"_s), m_environment.productionUrl);

    if (const auto tokens = cachedTokens(m_environment.tokenFilePath);
        tokens && tokens->isValid(m_environment.clock.wallNow()))
        m_userEmail = emailFromJWT(tokens->accessToken);
}

SessionViewModel::~SessionViewModel() {
    m_tts->setOnPlayingChanged({});
}

void SessionViewModel::setIsSessionActive(bool value) {
    const bool isChange = m_isSessionActive != value;
    m_isSessionActive = value;
    if (isChange)
        Q_EMIT isSessionActiveChanged();
    if (onSessionActiveChanged)
        onSessionActiveChanged(value);
}

void SessionViewModel::setIsStealthEnabled(bool value) {
    const bool isChange = m_isStealthEnabled != value;
    m_isStealthEnabled = value;
    if (isChange)
        Q_EMIT isStealthEnabledChanged();
    if (onStealthChanged)
        onStealthChanged(value);
}

void SessionViewModel::setSessionMode(QString value) {
    const bool isChange = m_sessionMode != value;
    m_sessionMode = std::move(value);
    if (isChange)
        Q_EMIT sessionModeChanged();
    if (onSessionModeChanged)
        onSessionModeChanged(m_sessionMode);
}

void SessionViewModel::setFontScale(double value) {
    const bool isChange = m_fontScale != value;
    m_fontScale = value;
    if (isChange)
        Q_EMIT fontScaleChanged();
    m_environment.preferences.setNumber(u"fontScale"_s, value);
    // The panel's size follows the text's.
    if (onSessionModeChanged)
        onSessionModeChanged(m_sessionMode);
}

void SessionViewModel::setAutoStartOnCall(bool value) {
    const bool isChange = m_autoStartOnCall != value;
    m_autoStartOnCall = value;
    if (isChange)
        Q_EMIT autoStartOnCallChanged();
    m_environment.preferences.setBoolean(u"autoStartOnCall"_s, value);
}

void SessionViewModel::setCoachingMode(AudienceType value) {
    const bool isChange = m_coachingMode != value;
    m_coachingMode = value;
    if (isChange)
        Q_EMIT coachingModeChanged();
    m_environment.preferences.setString(u"coachingMode"_s, tableText(rawValue(value)));
}

void SessionViewModel::setIsScreenShareEnabled(bool value) {
    if (m_isScreenShareEnabled == value)
        return;
    m_isScreenShareEnabled = value;
    Q_EMIT isScreenShareEnabledChanged();
    m_environment.preferences.setBoolean(u"screenShareEnabled"_s, value);
    runDetached([this](std::stop_token) { return applyScreenShareToggle(); });
}

bool SessionViewModel::isLocalServer() const {
    return m_serverURL.contains(u"localhost") || m_serverURL.contains(u"127.0.0.1");
}

bool SessionViewModel::isLoggedIn() const {
    return m_userEmail.has_value() || isLocalServer();
}

QCoro::Task<std::optional<QString>> SessionViewModel::authToken() {
    return m_auth->validToken(m_authURL);
}

QString SessionViewModel::resolveURL(ServerMode mode, const std::optional<QString>& custom, const QString& production) {
    switch (mode) {
    case ServerMode::production: return production;
    case ServerMode::local: return u"ws://localhost:3001/ws"_s;
    case ServerMode::custom: return custom && !custom->isEmpty() ? *custom : production;
    }
    Q_UNREACHABLE();
}

bool SessionViewModel::isReachingServer() const {
    return m_statusText == u"Connecting..."_s || m_statusText == u"Connected"_s ||
           m_statusText == u"Waiting for session..."_s;
}

bool SessionViewModel::isEnding() const {
    return m_isSessionActive && !m_endSessionTimeoutTask.isFinished();
}

bool SessionViewModel::isQuiet() const {
    const bool isLinkDone = m_sensorPollTask.isSet() || m_linkTasks == 0;
    return m_runningSessions == 0 && m_detachedTasks == 0 && isLinkDone;
}

}  // namespace corvellan
