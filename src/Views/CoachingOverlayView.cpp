#include "CoachingOverlayView.h"

#include <unicode/regex.h>
#include <algorithm>
#include <array>
#include <QStringList>

#include "Base/Text.h"
#include "HandoffWindowController.h"
#include "MeddicLabels.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

/// Stages with a cell of their own; the two outside the sales ladder have none.
constexpr std::array shownStages{
    CallStage::opening,     CallStage::discovery,         CallStage::qualification, CallStage::demo,
    CallStage::negotiation, CallStage::objectionHandling, CallStage::closing,
};

QString rawText(std::string_view raw) {
    return QString::fromLatin1(raw.data(), static_cast<qsizetype>(raw.size()));
}

QString textOf(const std::optional<QString>& text) {
    return text.value_or(QString{});
}

QString onOneLine(QString text) {
    for (QChar& character : text)
        if (character == u'\n' || character == u'\r' || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = u' ';
    return text;
}

QString withoutTags(const QString& text) {
    // Behind the last closing bracket there is no tag. Looked for from each opening one to the end, that
    // would take a time that grows with the square of the text.
    const qsizetype end = text.lastIndexOf(u'>') + 1;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString input{reinterpret_cast<const char16_t*>(text.utf16()), static_cast<int32_t>(end)};
    icu::RegexMatcher matcher{icu::UnicodeString{u"<[^>]+>"}, input, 0, status};
    const icu::UnicodeString output = matcher.replaceAll(icu::UnicodeString{}, status);
    // Only a lack of memory fails this pattern; the text as it stands is then still readable.
    if (U_FAILURE(status))
        return text;
    return QString::fromUtf16(output.getBuffer(), output.length()) + text.sliced(end);
}

}  // namespace

CoachingOverlayView::CoachingOverlayView(SessionViewModel& session, HandoffWindowController& handoffWindowController,
                                         QObject* parent)
    : QObject(parent),
      m_session(session),
      m_handoffWindowController(handoffWindowController),
      m_stages({"label", "textColor", "background", "isCurrent"}, static_cast<int>(shownStages.size())),
      m_scoreBars({"barColor"}, meddicCriteria),
      m_checklist({"mark", "markColor", "label", "labelColor", "evidence", "isHighlighted", "spoken"}, meddicCriteria) {
    using Session = SessionViewModel;
    using View = CoachingOverlayView;
    connect(&session, &Session::fontScaleChanged, this, &View::fsChanged);
    connect(&session, &Session::coachingTypeChanged, this, &View::tipKindChanged);
    connect(&session, &Session::coachingUrgencyChanged, this, &View::tipKindChanged);
    connect(&session, &Session::coachingMessageChanged, this, &View::messageChanged);
    connect(&session, &Session::statusTextChanged, this, [this] {
        if (!hasMessage())
            Q_EMIT messageChanged();
    });
    connect(&session, &Session::productHintChanged, this, &View::productHintChanged);
    connect(&session, &Session::coachingModeChanged, this, &View::modeChanged);
    connect(&session, &Session::callStageChanged, this, &View::updateStages);
    connect(&session, &Session::callPhaseChanged, this, &View::phaseChanged);
    connect(&session, &Session::meddicScoreChanged, this, &View::updateScore);
    connect(&session, &Session::meddicEvidenceChanged, this, &View::updateChecklist);
    connect(&session, &Session::meddicJustConfirmedChanged, this, &View::updateChecklist);
    connect(&session, &Session::buyerDiscChanged, this, &View::buyerChanged);
    connect(&session, &Session::sentimentChanged, this, &View::moodChanged);
    connect(&session, &Session::currentCompanyChanged, this, &View::companyChanged);
    connect(&session, &Session::cachedHandoffChanged, this, &View::companyChanged);
    connect(&session, &Session::crmBriefChanged, this, &View::updateBriefText);
    connect(&session, &Session::isTtsPlayingChanged, this, &View::speakingChanged);
    connect(&session, &Session::errorMessageChanged, this, &View::errorMessageChanged);
    updateStages();
    updateScore();
    updateBriefText();
}

double CoachingOverlayView::fs() const {
    return m_session.fontScale();
}

QString CoachingOverlayView::tipLabel() const {
    const auto type = m_session.coachingType();
    return type ? coachingTypeLabel(*type) : QString{};
}

QColor CoachingOverlayView::tipColor() const {
    const auto type = m_session.coachingType();
    return type ? paint(coachingTypeColor(*type)) : QColor{Qt::transparent};
}

QColor CoachingOverlayView::tipBackground() const {
    const auto type = m_session.coachingType();
    return type ? paint(coachingTypeColor(*type).role, 0.15) : QColor{Qt::transparent};
}

bool CoachingOverlayView::isUrgent() const {
    return m_session.coachingType() && m_session.coachingUrgency() == CoachingUrgency::high;
}

bool CoachingOverlayView::hasMessage() const {
    return !m_session.coachingMessage().isEmpty();
}

QString CoachingOverlayView::message() const {
    return hasMessage() ? m_session.coachingMessage() : m_session.statusText();
}

QString CoachingOverlayView::productHint() const {
    return textOf(m_session.productHint());
}

QString CoachingOverlayView::modeLabel() const {
    return label(m_session.coachingMode());
}

QColor CoachingOverlayView::modeColor() const {
    return paint(modeBadgeColor(m_session.coachingMode()));
}

bool CoachingOverlayView::showsMeddic() const {
    return m_session.coachingMode() != AudienceType::coldCall;
}

QString CoachingOverlayView::stageName() const {
    return prettyPhase(rawText(rawValue(m_session.callStage())));
}

QString CoachingOverlayView::phaseText() const {
    const QString phase = textOf(m_session.callPhase());
    return phase.isEmpty() ? QString{} : u"→ "_s + prettyPhase(phase);
}

QString CoachingOverlayView::scoreText() const {
    return u"%1/%2"_s.arg(m_session.meddicScore().score()).arg(meddicCriteria);
}

QColor CoachingOverlayView::scoreColor() const {
    return paint(meddicScoreColor(m_session.meddicScore().score()));
}

QString CoachingOverlayView::buyerLabel() const {
    return discLabel(m_session.buyerDisc().discType);
}

QColor CoachingOverlayView::buyerColor() const {
    return paint(discColor(m_session.buyerDisc().discType));
}

QString CoachingOverlayView::buyerConfidence() const {
    const BuyerDisc& buyer = m_session.buyerDisc();
    if (buyer.discType == DiscType::unknown)
        return {};
    return u"(%1)"_s.arg(text::upperFirst(rawText(rawValue(buyer.confidence))));
}

QString CoachingOverlayView::moodEmoji() const {
    return emoji(m_session.sentiment());
}

QString CoachingOverlayView::moodLabel() const {
    return text::upperFirst(rawText(rawValue(m_session.sentiment())));
}

QColor CoachingOverlayView::moodColor() const {
    return paint(sentimentColor(m_session.sentiment()));
}

bool CoachingOverlayView::hasCompany() const {
    return m_session.currentCompany().has_value();
}

QString CoachingOverlayView::companyName() const {
    return textOf(m_session.currentCompany());
}

bool CoachingOverlayView::hasHandoff() const {
    return m_session.cachedHandoff().has_value();
}

bool CoachingOverlayView::isCompanyRowActive() const {
    return hasHandoff() || m_session.crmBrief().has_value();
}

QString CoachingOverlayView::companySymbol() const {
    return hasHandoff() ? u"doc.text"_s : u"building.2"_s;
}

QColor CoachingOverlayView::companySymbolColor() const {
    return hasHandoff() ? paint(ColorRole::orange, 0.7) : paint(ColorRole::white, 0.4);
}

QString CoachingOverlayView::chevronSymbol() const {
    if (hasHandoff() || !m_session.crmBrief())
        return {};
    return m_showBrief ? u"chevron.up"_s : u"chevron.down"_s;
}

bool CoachingOverlayView::isBriefShown() const {
    return hasCompany() && !hasHandoff() && m_showBrief && m_session.crmBrief();
}

bool CoachingOverlayView::isSpeaking() const {
    return m_session.isTtsPlaying();
}

QString CoachingOverlayView::errorMessage() const {
    return textOf(m_session.errorMessage());
}

void CoachingOverlayView::endSession() {
    m_session.endSession();
}

void CoachingOverlayView::pressCompanyRow() {
    if (const auto& handoff = m_session.cachedHandoff()) {
        m_handoffWindowController.show(*handoff);
        return;
    }
    if (!m_session.crmBrief())
        return;
    m_showBrief = !m_showBrief;
    Q_EMIT companyChanged();
}

void CoachingOverlayView::updateStages() {
    const CallStage current = m_session.callStage();
    std::vector<FixedRowsModel::Row> rows;
    for (const CallStage stage : shownStages) {
        const bool isCurrent = stage == current;
        const bool isBehind = level(stage) < level(current);
        const ColorRole role = isCurrent ? ColorRole::cyan : isBehind ? ColorRole::green : ColorRole::white;
        const bool isLit = isCurrent || isBehind;
        rows.push_back({stageAbbrev(stage), isLit ? paint(role) : paint(role, 0.2),
                        isLit ? paint(role, 0.15) : QColor{Qt::transparent}, isCurrent});
    }
    m_stages.assign(rows);
    Q_EMIT stageChanged();
}

void CoachingOverlayView::updateScore() {
    std::vector<FixedRowsModel::Row> bars;
    for (const Tint tint : scoreBar(m_session.meddicScore().score(), meddicCriteria))
        bars.push_back({paint(tint)});
    m_scoreBars.assign(bars);
    updateChecklist();
    Q_EMIT scoreChanged();
}

void CoachingOverlayView::updateChecklist() {
    const auto criteria = m_session.meddicScore().values();
    const MeddicEvidence& evidence = m_session.meddicEvidence();
    std::vector<FixedRowsModel::Row> rows;
    for (std::size_t i = 0; i < criteria.size(); ++i) {
        const bool isMet = criteria[i];
        const QString name = meddicLabels[i];
        const QString quote = evidence[i] ? u"— "_s + onOneLine(*evidence[i]) : QString{};
        const QString spoken = name + (isMet ? u": confirmed "_s : u": open "_s) + quote;
        rows.push_back({isMet ? u"✓"_s : u"✗"_s, isMet ? paint(ColorRole::green) : paint(ColorRole::white, 0.2), name,
                        paint(ColorRole::white, isMet ? 0.8 : 0.3), quote,
                        m_session.meddicJustConfirmed() == static_cast<int>(i), spoken.trimmed()});
    }
    m_checklist.assign(rows);
}

void CoachingOverlayView::updateBriefText() {
    m_briefText = cleanBrief(textOf(m_session.crmBrief()));
    Q_EMIT briefTextChanged();
    Q_EMIT companyChanged();
}

QString CoachingOverlayView::cleanBrief(const QString& text) {
    QString cleaned = withoutTags(text);
    while (cleaned.contains("\n\n\n"_L1))
        cleaned.replace("\n\n\n"_L1, "\n\n"_L1);
    return text::trimmed(cleaned);
}

QString CoachingOverlayView::prettyPhase(const QString& phase) {
    QStringList words = phase.split(u'_', Qt::SkipEmptyParts);
    for (QString& word : words)
        word = text::upperFirst(word);
    return words.join(u' ');
}

QString CoachingOverlayView::stageAbbrev(CallStage stage) {
    return abbreviation(stage);
}

Tint CoachingOverlayView::modeBadgeColor(AudienceType mode) {
    return {accentColor(mode)};
}

Tint CoachingOverlayView::meddicScoreColor(int score) {
    if (score > 3)
        return {ColorRole::green};
    return {score >= 2 ? ColorRole::yellow : ColorRole::red};
}

std::vector<Tint> CoachingOverlayView::scoreBar(int filled, int total) {
    std::vector<Tint> bars;
    for (int i = 0; i < total; ++i)
        bars.push_back(i >= filled ? Tint{ColorRole::white, 0.1} : meddicScoreColor(filled));
    return bars;
}

QString CoachingOverlayView::discLabel(DiscType type) {
    return overlayLabel(type);
}

Tint CoachingOverlayView::discColor(DiscType type) {
    return {overlayColor(type)};
}

Tint CoachingOverlayView::sentimentColor(CustomerSentiment sentiment) {
    return color(sentiment);
}

QString CoachingOverlayView::coachingTypeLabel(CoachingType type) {
    return label(type);
}

Tint CoachingOverlayView::coachingTypeColor(CoachingType type) {
    return {color(type)};
}

}  // namespace corvellan
