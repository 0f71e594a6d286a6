#include "StealthView.h"

#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

/// What others see while the window is not confirmed hidden.
QString exposure(CaptureVisibility visibility) {
    switch (visibility) {
    case CaptureVisibility::hidden: return {};
    case CaptureVisibility::visible:
    case CaptureVisibility::unsupported: return u"Screen sharing shows this window."_s;
    case CaptureVisibility::hiding:
    case CaptureVisibility::needsConfiguration:
    case CaptureVisibility::failed: return u"Screen sharing may show this window."_s;
    }
    Q_UNREACHABLE();
}

}  // namespace

StealthView::StealthView(SessionViewModel& session, CaptureHiding& captureHiding,
                         std::optional<CaptureSelfTest::Means> selfTest, AfterNextFrame afterNextFrame, QObject* parent)
    : QObject(parent),
      m_session(session),
      m_captureHiding(captureHiding),
      m_afterNextFrame(std::move(afterNextFrame)),
      m_selfTest(selfTest ? std::make_unique<CaptureSelfTest>(*selfTest, static_cast<CaptureMarkerWindow&>(*this))
                          : nullptr) {
    connect(&session, &SessionViewModel::isStealthEnabledChanged, this, &StealthView::stateChanged);
    connect(&session, &SessionViewModel::isSessionActiveChanged, this, &StealthView::stateChanged);
    m_captureHiding.onChanged = [this] { Q_EMIT stateChanged(); };
    if (m_selfTest)
        m_selfTest->onChanged = [this] { Q_EMIT testChanged(); };
}

StealthView::~StealthView() {
    m_captureHiding.onChanged = {};
}

bool StealthView::isAvailable() const {
    return m_captureHiding.status().offer == CaptureHidingOffer::hides;
}

bool StealthView::isStealthOn() const {
    return m_session.isStealthEnabled();
}

bool StealthView::hasWarning() const {
    return isStealthOn() && m_captureHiding.status().visibility != CaptureVisibility::hidden;
}

QString StealthView::warningText() const {
    if (!hasWarning())
        return {};
    const CaptureHidingStatus status = m_captureHiding.status();
    if (status.visibility == CaptureVisibility::visible)
        return u"Stealth is on and applies in a call. "_s + exposure(status.visibility);
    return exposure(status.visibility) + u' ' + status.explanation;
}

QString StealthView::alertText() const {
    return m_captureHiding.status().visibility == CaptureVisibility::hiding ? QString{} : warningText();
}

QString StealthView::controlTip() const {
    if (hasWarning())
        return warningText();
    if (isStealthOn())
        return u"Hidden from screen sharing. Press to show this window again."_s;
    const CaptureHidingStatus status = m_captureHiding.status();
    switch (status.offer) {
    case CaptureHidingOffer::hides: return u"Hide this window from screen sharing. "_s + status.explanation;
    case CaptureHidingOffer::doesNotHide:
        return u"Stealth would not hide this window from screen sharing. "_s + status.explanation;
    case CaptureHidingOffer::needsConfiguration:
        return u"Stealth would not hide this window by itself. "_s + status.explanation;
    }
    Q_UNREACHABLE();
}

QString StealthView::controlSymbol() const {
    return isStealthOn() ? u"eye.slash"_s : u"eye.fill"_s;
}

QString StealthView::statusText() const {
    const CaptureHidingStatus status = m_captureHiding.status();
    if (hasWarning())
        return warningText();
    return isStealthOn() ? status.explanation : u"Stealth is off. "_s + status.explanation;
}

QString StealthView::adviceText() const {
    return m_captureHiding.status().configuration;
}

bool StealthView::canTest() const {
    return m_selfTest && !m_selfTest->isRunning();
}

bool StealthView::isTesting() const {
    return m_selfTest && m_selfTest->isRunning();
}

QString StealthView::testResultText() const {
    if (isTesting())
        return u"Testing: a patch of colours stands in the window for a moment."_s;
    const auto result = m_selfTest ? m_selfTest->result() : std::nullopt;
    if (!result)
        return {};
    switch (result->outcome) {
    case CaptureTestOutcome::visible:
        return u"Visible to capture: a picture of the screen, taken just now, shows this window."_s;
    case CaptureTestOutcome::notVisible:
        return u"Not visible: a picture of the screen, taken just now, does not show this window."_s;
    case CaptureTestOutcome::couldNotCapture:
        return u"Could not capture the screen, so nothing is known. "_s + result->reason;
    }
    Q_UNREACHABLE();
}

int StealthView::markerColumns() {
    return CaptureMarker::columns;
}

int StealthView::markerCellSize() {
    return CaptureMarker::cellSize;
}

bool StealthView::showMarker(const CaptureMarker& marker, std::function<void()> onShown) {
    const std::vector<QColor> colors = marker.colors();
    setMarkerColors({colors.begin(), colors.end()});
    if (m_afterNextFrame && m_afterNextFrame(std::move(onShown)))
        return true;
    clearMarker();
    return false;
}

void StealthView::clearMarker() {
    setMarkerColors({});
}

void StealthView::setMarkerColors(QList<QColor> colors) {
    if (m_markerColors == colors)
        return;
    m_markerColors = std::move(colors);
    Q_EMIT markerChanged();
}

void StealthView::toggle() {
    m_session.setIsStealthEnabled(!m_session.isStealthEnabled());
}

void StealthView::runSelfTest() {
    if (m_selfTest)
        m_selfTest->run();
}

}  // namespace corvellan
