#include "ScreenDriver.h"

#include <algorithm>
#include <QAccessible>
#include <QClipboard>
#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <vector>

#include "FakeStealth.h"

namespace corvellan::test {

namespace {

std::string word(const QString& text) {
    return text.toStdString();
}

}  // namespace

struct ScreenDriver::World {
    /// The view states read its preferences as they are made.
    struct Session : SessionFixture {
        explicit Session(bool isOnboarded) {
            if (isOnboarded)
                preferences.setBoolean(QStringLiteral("onboardingCompleted"), true);
        }
    };

    /// \param isOnboarded the user has gone through the onboarding.
    explicit World(bool isOnboarded = true) : fixture(isOnboarded) {}

    FakeUpdater updater;
    Session fixture;
    FakeHandoffWindow handoffWindow;
    SettingsFixture desktop{fixture.preferences};
    FakeDesktopHiding hiding;
    QTemporaryDir home;
    ViewStates views{{.session = fixture.session(),
                      .preferences = fixture.preferences,
                      .captureHiding = hiding,
                      .handoffWindowController = handoffWindow,
                      .settings = desktop.parts(),
                      .memoryFile = noteFile()}};

    [[nodiscard]] QString noteFile() const { return home.filePath(QStringLiteral("memory.md")); }
};

ScreenDriver::ScreenDriver() : m_world(std::make_unique<World>()) {}

ScreenDriver::~ScreenDriver() = default;

QObject* ScreenDriver::views() {
    return &m_world->views;
}

SessionViewModel& ScreenDriver::session() {
    return m_world->fixture.session();
}

void ScreenDriver::reset() {
    m_world = std::make_unique<World>();
    Q_EMIT madeAnew();
}

void ScreenDriver::resetAsNewUser(const QString& email) {
    m_world = std::make_unique<World>(false);
    setUser(email);
    Q_EMIT madeAnew();
}

void ScreenDriver::startCall(const QString& company) {
    session().startSession({.company = company.isEmpty() ? std::nullopt : std::optional{company}});
    settle();
}

void ScreenDriver::holdConnecting() {
    m_world->fixture.ws->connectGate.close();
}

void ScreenDriver::goLive() {
    m_world->fixture.goLive();
}

void ScreenDriver::stopCall() {
    session().stopSession();
    settle();
}

void ScreenDriver::tip(const QString& kind, const QString& urgency, const QString& message) {
    session().setCoachingType(coachingType(word(kind)));
    session().setCoachingUrgency(coachingUrgency(word(urgency)));
    session().setCoachingMessage(message);
}

void ScreenDriver::setStatus(const QString& text) {
    session().setStatusText(text);
}

void ScreenDriver::setMode(const QString& mode) {
    session().setCoachingMode(audienceType(word(mode)).value());
}

void ScreenDriver::setEvidence(int criterion, const QString& text) {
    MeddicEvidence evidence;
    evidence.at(static_cast<std::size_t>(criterion)) = text;
    session().setMeddicEvidence(evidence);
}

void ScreenDriver::setJustConfirmed(int criterion) {
    session().setMeddicJustConfirmed(criterion < 0 ? std::nullopt : std::optional{criterion});
}

void ScreenDriver::setBrief(const QString& text) {
    session().setCrmBrief(text);
}

void ScreenDriver::setHandoff(const QString& note) {
    session().setCachedHandoff(HandoffResponse{.handoffNote = note});
}

void ScreenDriver::setError(const QString& text) {
    session().setErrorMessage(text);
}

void ScreenDriver::setSpeaking(bool isSpeaking) {
    session().setIsTtsPlaying(isSpeaking);
}

void ScreenDriver::setFontScale(double scale) {
    session().setFontScale(scale);
}

void ScreenDriver::setPhase(const QString& phase) {
    session().setCallPhase(phase);
}

void ScreenDriver::setProductHint(const QString& text) {
    session().setProductHint(text);
}

void ScreenDriver::setHidingOffer(const QString& offer, const QString& explanation) {
    m_world->hiding.setOffer(offer, explanation);
}

void ScreenDriver::setCaptureVisibility(const QString& visibility, const QString& explanation) {
    m_world->hiding.setVisibility(visibility, explanation);
}

void ScreenDriver::setStealth(bool isOn) {
    session().setIsStealthEnabled(isOn);
}

QRectF ScreenDriver::placeAfterLayout(QQuickItem* item) const {
    // A grab polishes until nothing is left that wants it, which a window's own frames may do much later.
    if (QQuickWindow* const window = item->window())
        window->grabWindow();
    return item->mapRectToScene({0, 0, item->width(), item->height()});
}

void ScreenDriver::askForFrame(QQuickItem* item) const {
    if (QQuickWindow* const window = item->window())
        window->update();
}

bool ScreenDriver::isStealthOn() {
    return session().isStealthEnabled();
}

void ScreenDriver::setUser(const QString& email) {
    session().setUserEmail(email.isEmpty() ? std::nullopt : std::optional{email});
}

void ScreenDriver::setConnected(bool isConnected) {
    session().setIsConnected(isConnected);
}

void ScreenDriver::setSensor(bool isConnected, const QString& contact, const QString& company, bool hasCall) {
    const auto named = [](const QString& text) { return text.isEmpty() ? std::nullopt : std::optional{text}; };
    session().setSensorConnected(isConnected);
    session().setExtensionCallActive(hasCall);
    if (contact.isEmpty() && company.isEmpty())
        session().setExtensionContext(std::nullopt);
    else
        session().setExtensionContext(ExtensionContextPayload{.entityType = QStringLiteral("contact"),
                                                              .entityId = QStringLiteral("7"),
                                                              .displayName = named(contact),
                                                              .companyName = named(company)});
}

void ScreenDriver::setKeyWatch(bool isWatching, const QString& explanation) {
    m_world->views.settings()->setGlobalKeyWatch(isWatching ? GlobalKeyWatch::watching : GlobalKeyWatch::unavailable,
                                                 explanation);
}

void ScreenDriver::setPermissions(const QString& microphone, bool canSeeScreen) {
    auto& source = m_world->desktop.desktop.permissions;
    source.microphone = microphone == QLatin1StringView{"authorized"} ? CaptureAuthorization::authorized
                        : microphone == QLatin1StringView{"denied"}   ? CaptureAuthorization::denied
                                                                      : CaptureAuthorization::notDetermined;
    if (canSeeScreen)
        source.contentFailure.reset();
    else
        source.contentFailure = TransportError{QStringLiteral("refused")};
}

void ScreenDriver::setMicrophoneAnswer(bool isGranted) {
    m_world->desktop.desktop.permissions.isMicrophoneGranted = isGranted;
}

void ScreenDriver::setNotifications(const QString& authorization) {
    m_world->desktop.desktop.notifications.granted =
        authorization == QLatin1StringView{"authorized"} ? NotificationAuthorization::authorized
        : authorization == QLatin1StringView{"denied"}   ? NotificationAuthorization::denied
                                                         : NotificationAuthorization::notDetermined;
}

void ScreenDriver::setVoice(const QString& engine, const QString& name) {
    const SpeechVoice voice{.language = QStringLiteral("en-US"), .quality = VoiceQuality::enhanced, .name = name};
    m_world->desktop.desktop.speech.voices = {.all = {voice}, .americanEnglish = voice, .engine = engine};
}

void ScreenDriver::refuseLoginItems() {
    m_world->desktop.desktop.loginItems.failure = TransportError{QStringLiteral("read-only")};
}

void ScreenDriver::setLoginItem(bool isRegistered) {
    m_world->desktop.desktop.loginItems.isRegistered = isRegistered;
}

void ScreenDriver::provideUpdater() {
    session().setSparkleUpdater(&m_world->updater);
}

void ScreenDriver::setDark(bool isDark) {
    m_world->views.theme()->setIsDark(isDark);
}

void ScreenDriver::requestTab(const QString& tab) {
    session().setRequestedTab(tab);
}

QVariant ScreenDriver::stored(const QString& key) const {
    const auto& preferences = m_world->fixture.preferences;
    if (const auto text = preferences.string(key))
        return *text;
    if (const auto flag = preferences.boolean(key))
        return *flag;
    if (const auto number = preferences.number(key))
        return *number;
    return {};
}

QVariant ScreenDriver::noteFile() const {
    QFile file{m_world->noteFile()};
    return file.open(QIODevice::ReadOnly) ? QVariant{QString::fromUtf8(file.readAll())} : QVariant{};
}

void ScreenDriver::setNoteFile(const QString& text) {
    QFile file{m_world->noteFile()};
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
}

void ScreenDriver::passTime(int milliseconds) {
    settleAfter(m_world->fixture.clock, std::chrono::milliseconds{milliseconds});
}

QString ScreenDriver::serverURL() {
    return session().serverURL();
}

bool ScreenDriver::isLoginItem() const {
    return m_world->desktop.desktop.loginItems.isRegistered;
}

void ScreenDriver::setHidingAdvice(const QString& lines) {
    m_world->hiding.set({.offer = CaptureHidingOffer::needsConfiguration, .configuration = lines});
}

int ScreenDriver::asked(const QString& step) const {
    settle();
    const std::string name = word(step);
    return static_cast<int>(std::ranges::count(m_world->fixture.log, name) +
                            std::ranges::count(m_world->desktop.desktop.log, name));
}

int ScreenDriver::updateChecks() const {
    return m_world->updater.checks;
}

QString ScreenDriver::openedPage() const {
    settle();
    const auto& pages = m_world->desktop.desktop.browser.pages;
    return pages.empty() ? QString{} : pages.back().toString();
}

QString ScreenDriver::clipboard() const {
    return QGuiApplication::clipboard()->text();
}

QVariantMap ScreenDriver::spoken(QObject* item) const {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
    if (!accessible)
        return {};
    return {{QStringLiteral("name"), accessible->text(QAccessible::Name)},
            {QStringLiteral("description"), accessible->text(QAccessible::Description)},
            {QStringLiteral("role"), QVariant::fromValue(static_cast<int>(accessible->role()))},
            {QStringLiteral("isCheckable"), static_cast<bool>(accessible->state().checkable)},
            {QStringLiteral("isChecked"), static_cast<bool>(accessible->state().checked)},
            {QStringLiteral("isSelected"), static_cast<bool>(accessible->state().selected)}};
}

bool ScreenDriver::isSessionActive() {
    settle();
    return session().isSessionActive();
}

int ScreenDriver::connectionsAsked() const {
    settle();
    return static_cast<int>(m_world->fixture.ws->urls.size());
}

int ScreenDriver::handoffsShown() const {
    return static_cast<int>(m_world->handoffWindow.shown.size());
}

bool ScreenDriver::wasSessionEnded() const {
    settle();
    const auto& sent = m_world->fixture.ws->sent;
    return !sent.empty() && std::holds_alternative<ClientMsg::EndSession>(sent.back().value);
}

void ScreenDriver::repeatKey(QObject* window, int key) {
    constexpr bool isAutoRepeat = true;
    for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent event{type, key, Qt::NoModifier, QString{}, isAutoRepeat};
        QCoreApplication::sendEvent(window, &event);
    }
}

void ScreenDriver::pressTwice(QQuickItem* item) const {
    QQuickWindow* const window = item->window();
    const QPointF place = placeAfterLayout(item).center();
    for (const auto& types : {std::vector{QEvent::MouseButtonPress, QEvent::MouseButtonRelease},
                              {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}}) {
        for (const QEvent::Type type : types) {
            QMouseEvent event{type,
                              place,
                              window->mapToGlobal(place),
                              Qt::LeftButton,
                              type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                              Qt::NoModifier};
            QCoreApplication::sendEvent(window, &event);
        }
        static_cast<void>(placeAfterLayout(item));
    }
}

bool ScreenDriver::pressThroughAccessibility(QObject* item) {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
    if (!accessible || !accessible->actionInterface())
        return false;
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

bool ScreenDriver::writeThroughAccessibility(QObject* item, const QString& text) {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
    if (!accessible)
        return false;
    accessible->setText(QAccessible::Value, text);
    return true;
}

void ScreenDriver::offerUpdate() {
    session().setUpdateAvailable(true);
}

void ScreenDriver::setElapsed(int seconds) {
    session().setElapsedSeconds(seconds);
}

void ScreenDriver::setMicrophoneLevel(double level) {
    session().setAudioLevel(static_cast<float>(level));
}

void ScreenDriver::setSystemLevel(double level) {
    session().setSystemAudioLevel(static_cast<float>(level));
}

void ScreenDriver::say(int source, const QString& text) {
    session().transcriptLines().append(
        {.id = QUuid::createUuid(), .source = static_cast<TranscriptSource>(source), .text = text});
}

void ScreenDriver::setStreaming(const QString& text) {
    session().setCounterpartStreamingText(text);
}

void ScreenDriver::setWaiting(bool isWaiting) {
    session().setTrainStage(isWaiting ? TrainStage::waitingLLM : TrainStage::listening);
}

void ScreenDriver::setBuyer(const QString& type) {
    session().setBuyerDisc({.discType = discType(word(type)).value(), .confidence = DiscConfidence::high});
}

void ScreenDriver::useProductionServer() {
    session().setServerURL(QStringLiteral("wss://coach.test/ws"));
}

}  // namespace corvellan::test
