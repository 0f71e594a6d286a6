#include "LiveSessionView.h"

#include "Base/Text.h"
#include "HandoffWindowController.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

constexpr float heardLevel = 0.01F;
constexpr float highLevel = 0.4F;
constexpr float clippingLevel = 0.7F;

QString percentage(float level) {
    constexpr double whole = 100;
    return text::fixed(static_cast<double>(level) * whole, 0) + u'%';
}

}  // namespace

QString formatTimer(qint64 seconds) {
    constexpr qint64 minute = 60;
    return QString::asprintf("%lld:%02lld", static_cast<long long>(seconds / minute),
                             static_cast<long long>(seconds % minute));
}

LiveSessionView::LiveSessionView(SessionViewModel& session, HandoffWindowController& handoffWindowController,
                                 QObject* parent)
    : QObject(parent),
      m_session(session),
      m_handoffWindowController(handoffWindowController) {
    connect(&session, &SessionViewModel::fontScaleChanged, this, &LiveSessionView::fontScaleChanged);
    connect(&session, &SessionViewModel::elapsedSecondsChanged, this, &LiveSessionView::timerChanged);
    connect(&session, &SessionViewModel::buyerDiscChanged, this, &LiveSessionView::buyerChanged);
    connect(&session, &SessionViewModel::audioLevelChanged, this, &LiveSessionView::audioLevelChanged);
    connect(&session, &SessionViewModel::systemAudioLevelChanged, this, &LiveSessionView::systemChanged);
    connect(&session, &SessionViewModel::counterpartStreamingTextChanged, this, &LiveSessionView::systemChanged);
    connect(&session, &SessionViewModel::counterpartStreamingTextChanged, this, &LiveSessionView::streamingChanged);
    connect(&session, &SessionViewModel::statusTextChanged, this, &LiveSessionView::statusChanged);
    connect(&session, &SessionViewModel::isTtsPlayingChanged, this, &LiveSessionView::speechChanged);
    connect(&session, &SessionViewModel::isTtsMutedChanged, this, &LiveSessionView::speechChanged);
    connect(&session, &SessionViewModel::trainStageChanged, this, &LiveSessionView::stageChanged);
}

QString LiveSessionView::sessionTabName() const {
    return tableText(rowOf(sessionTabRows, m_sessionTab).raw);
}

QString LiveSessionView::sessionTabIcon() const {
    return tableText(rowOf(sessionTabRows, m_sessionTab).icon);
}

QString LiveSessionView::nextSessionTabName() const {
    return tableText(rowOf(sessionTabRows, rowOf(sessionTabRows, m_sessionTab).next).raw);
}

double LiveSessionView::fontScale() const {
    return m_session.fontScale();
}

QString LiveSessionView::fontScaleIcon() const {
    if (m_session.fontScale() == 2.0)
        return u"textformat.size.larger"_s;
    return m_session.fontScale() == 1.5 ? u"textformat.size"_s : u"textformat.size.smaller"_s;
}

QString LiveSessionView::timerText() const {
    return formatTimer(m_session.elapsedSeconds());
}

QString LiveSessionView::discLetter() const {
    const DiscType type = m_session.buyerDisc().discType;
    return type == DiscType::unknown ? QString{} : tableText(rawValue(type)).left(1).toUpper();
}

float LiveSessionView::audioLevel() const {
    return m_session.audioLevel();
}

bool LiveSessionView::isMicHeard() const {
    return m_session.audioLevel() > heardLevel;
}

QColor LiveSessionView::micLevelColor() const {
    return paint(levelColor(m_session.audioLevel(), ColorRole::green));
}

QString LiveSessionView::micLevelText() const {
    return percentage(m_session.audioLevel());
}

bool LiveSessionView::showsSystem() const {
    return m_session.systemAudioLevel() > 0 || !m_session.counterpartStreamingText().isEmpty();
}

float LiveSessionView::systemAudioLevel() const {
    return m_session.systemAudioLevel();
}

bool LiveSessionView::isSystemHeard() const {
    return m_session.systemAudioLevel() > heardLevel;
}

QColor LiveSessionView::systemLevelColor() const {
    return paint(levelColor(m_session.systemAudioLevel(), ColorRole::orange));
}

QString LiveSessionView::systemLevelText() const {
    return percentage(m_session.systemAudioLevel());
}

QString LiveSessionView::statusText() const {
    return m_session.statusText();
}

QColor LiveSessionView::statusColor() const {
    return paint(statusColor(m_session.statusText()));
}

bool LiveSessionView::isTtsPlaying() const {
    return m_session.isTtsPlaying();
}

bool LiveSessionView::isTtsMuted() const {
    return m_session.isTtsMuted();
}

bool LiveSessionView::isWaiting() const {
    return m_session.trainStage() == TrainStage::waitingLLM;
}

QAbstractItemModel* LiveSessionView::transcriptLines() const {
    return &m_session.transcriptLines();
}

QString LiveSessionView::counterpartStreamingText() const {
    return m_session.counterpartStreamingText();
}

void LiveSessionView::cycleFontScale() {
    const double present = m_session.fontScale();
    m_session.setFontScale(present == 1.0 ? 1.5 : present == 1.5 ? 2.0 : 1.0);
}

void LiveSessionView::cycleSessionTab() {
    m_sessionTab = rowOf(sessionTabRows, m_sessionTab).next;
    Q_EMIT sessionTabChanged();
    m_session.setSessionMode(sessionTabName());
}

void LiveSessionView::applyLayout() {
    if (m_sessionTab != SessionTab::full)
        m_session.setSessionMode(sessionTabName());
}

void LiveSessionView::openHandoff() {
    if (const auto& handoff = m_session.cachedHandoff())
        m_handoffWindowController.show(*handoff);
}

void LiveSessionView::toggleTtsMute() {
    m_session.toggleTtsMute();
}

QColor LiveSessionView::tagColor(int source) const {
    return paint(color(static_cast<TranscriptSource>(source)));
}

ColorRole LiveSessionView::levelColor(float level, ColorRole base) {
    if (level > clippingLevel)
        return ColorRole::red;
    return level > highLevel ? ColorRole::yellow : base;
}

ColorRole LiveSessionView::statusColor(const QString& status) {
    if (status == u"Listening..."_s)
        return ColorRole::green;
    return status == u"Coaching"_s ? ColorRole::cyan : ColorRole::orange;
}

}  // namespace corvellan
