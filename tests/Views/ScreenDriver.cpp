#include "ScreenDriver.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QKeyEvent>

#include "FakeStealth.h"

namespace corvellan::test {

namespace {

std::string word(const QString& text) {
    return text.toStdString();
}

}  // namespace

struct ScreenDriver::World {
    SessionFixture fixture;
    FakeHandoffWindow handoffWindow;
    CoachingOverlayView overlay{fixture.session(), handoffWindow};
    IdleView idle{fixture.session()};
    SettingsFixture desktop{fixture.preferences};
    SettingsView settings{fixture.session(), fixture.preferences, desktop.parts()};
    Theme theme;
    Theme callTheme;
    MainView main{fixture.session(), theme};
    FakeDesktopHiding hiding;
    StealthView stealth{fixture.session(), hiding};
};

ScreenDriver::ScreenDriver() : m_world(std::make_unique<World>()) {}

ScreenDriver::~ScreenDriver() = default;

QObject* ScreenDriver::overlay() {
    return &m_world->overlay;
}

QObject* ScreenDriver::idle() {
    return &m_world->idle;
}

QObject* ScreenDriver::main() {
    return &m_world->main;
}

QObject* ScreenDriver::stealth() {
    return &m_world->stealth;
}

QObject* ScreenDriver::settings() {
    return &m_world->settings;
}

QObject* ScreenDriver::theme() {
    return &m_world->theme;
}

QObject* ScreenDriver::callTheme() {
    return &m_world->callTheme;
}

SessionViewModel& ScreenDriver::session() {
    return m_world->fixture.session();
}

void ScreenDriver::reset() {
    m_world = std::make_unique<World>();
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

bool ScreenDriver::isStealthOn() {
    return session().isStealthEnabled();
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

bool ScreenDriver::pressThroughAccessibility(QObject* item) {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
    if (!accessible || !accessible->actionInterface())
        return false;
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

}  // namespace corvellan::test
