#include "SessionRecordDetailView.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>

#include "MeddicLabels.h"
#include "Platform/WebBrowser.h"
#include "RecordScore.h"
#include "SessionListModel.h"
#include "Theme.h"
#include "ViewModels/SessionViewModel.h"
#include "Views/History/ReportFile.h"
#include "Views/History/SessionReport.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

struct Verdict {
    QString symbol;
    QString word;
    ColorRole color;
};

Verdict verdict(std::optional<std::int64_t> rating) {
    if (rating == 1)
        return {u"hand.thumbsup.fill"_s, u"Helpful"_s, ColorRole::green};
    return {u"hand.thumbsdown.fill"_s, u"Not helpful"_s, ColorRole::orange};
}

void copy(const QString& text) {
    QClipboard* const clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
}

}  // namespace

SessionRecordDetailView::SessionRecordDetailView(SessionRecord record, SessionViewModel* viewModel,
                                                 std::function<void()> onBack, Parts parts, QObject* parent)
    : QObject(parent),
      m_record(std::move(record)),
      m_viewModel(viewModel),
      m_onBack(std::move(onBack)),
      m_parts(std::move(parts)),
      m_criteria({"letter", "isMet", "label", "evidence", "spoken"}, meddicCriteria) {
    if (viewModel) {
        using Session = SessionViewModel;
        using View = SessionRecordDetailView;
        connect(viewModel, &Session::lastSummaryChanged, this, &View::feedbackChanged);
        connect(viewModel, &Session::feedbackRatingChanged, this, &View::feedbackChanged);
        connect(viewModel, &Session::feedbackSubmittedChanged, this, &View::feedbackChanged);
        connect(viewModel, &Session::feedbackNoteChanged, this, &View::feedbackNoteChanged);
    }
    updateRows();
}

SessionRecordDetailView::~SessionRecordDetailView() {
    m_mailTask.clear();
}

void SessionRecordDetailView::setRecord(SessionRecord record) {
    if (m_record == record)
        return;
    m_record = std::move(record);
    updateRows();
    Q_EMIT recordChanged();
    Q_EMIT feedbackChanged();
}

void SessionRecordDetailView::updateRows() {
    const auto met = m_record.meddic().values();
    const auto evidence = evidenceOf(m_record);
    std::vector<FixedRowsModel::Row> rows;
    for (std::size_t i = 0; i < met.size(); ++i) {
        const QString quote = evidence[i].value_or(QString{});
        QString spoken = meddicLabels[i] + (met[i] ? u": confirmed"_s : u": open"_s);
        if (!quote.isEmpty())
            spoken += u", "_s + quote;
        rows.push_back({QString{meddicLetters[i]}, met[i], QString{meddicLabels[i]}, quote, spoken});
    }
    m_criteria.assign(rows);
    m_transcript.assign(m_record.transcript);
}

// MARK: - Header

QString SessionRecordDetailView::badge() const {
    return SessionListModel::badge(m_record.audience());
}

QString SessionRecordDetailView::badgeColor() const {
    return colorName(accentColor(m_record.audience()));
}

bool SessionRecordDetailView::isFresh() const {
    return m_viewModel && m_viewModel->lastSummary() && m_record.callId;
}

bool SessionRecordDetailView::canEditOutcome() const {
    constexpr std::chrono::seconds editable{86'400};
    return m_record.callId && m_record.createdDate > m_parts.clock.wallNow() - editable;
}

void SessionRecordDetailView::back() {
    m_onBack();
}

void SessionRecordDetailView::copyTranscript() {
    copy(m_record.transcript.join(u'\n'));
    say(hasTranscript() ? u"Transcript copied."_s : u"This session has no transcript."_s);
}

void SessionRecordDetailView::copySessionSummary() {
    copy(sessionShareText());
    say(u"Summary copied."_s);
}

void SessionRecordDetailView::shareByMail() {
    say({});
    m_mailTask = CancellableTask::start([this](std::stop_token stop) -> QCoro::Task<void> {
        if (stop.stop_requested())
            co_return;
        const QString company = m_record.companyName ? u": "_s + *m_record.companyName : QString{};
        const auto opened = co_await m_parts.browser.composeMail(u"Session report"_s + company, sessionShareText());
        if (!stop.stop_requested())
            say(opened ? u"Handed to your mail program."_s
                       : opened.error().errorDescription() + u" You can save the report and attach it."_s);
    });
}

void SessionRecordDetailView::shareAsFile() {
    const auto saved = saveReport(m_parts.reportFolder, m_record, m_parts.dates);
    say(saved ? u"Saved as "_s + QDir::toNativeSeparators(*saved)
              : u"The report could not be saved: "_s + saved.error().errorDescription());
}

QString SessionRecordDetailView::sessionShareText() const {
    return corvellan::sessionShareText(m_record, m_parts.dates);
}

void SessionRecordDetailView::say(const QString& notice) {
    m_notice = notice;
    Q_EMIT noticeChanged();
}

// MARK: - Feedback

bool SessionRecordDetailView::showsFeedback() const {
    return m_viewModel && canEditOutcome();
}

QString SessionRecordDetailView::feedbackTitle() const {
    return isFresh() ? u"How was this session?"_s : u"Feedback"_s;
}

bool SessionRecordDetailView::canRate() const {
    return showsFeedback() && !m_viewModel->feedbackSubmitted() && !m_record.feedbackRating;
}

QString SessionRecordDetailView::feedbackNote() const {
    return m_viewModel ? m_viewModel->feedbackNote() : QString{};
}

void SessionRecordDetailView::setFeedbackNote(const QString& note) {
    if (m_viewModel)
        m_viewModel->setFeedbackNote(note);
}

void SessionRecordDetailView::rate(int rating) {
    // A screen reader presses what is not shown, and the day may have passed since it was.
    if (!canRate())
        return;
    const QString note = feedbackNote();
    m_viewModel->sendFeedback(rating, note.isEmpty() ? std::nullopt : std::optional{note}, m_record);
}

std::optional<std::int64_t> SessionRecordDetailView::givenRating() const {
    if (m_viewModel && m_viewModel->feedbackRating())
        return *m_viewModel->feedbackRating();
    return m_record.feedbackRating;
}

QString SessionRecordDetailView::resultSymbol() const {
    return verdict(givenRating()).symbol;
}

QString SessionRecordDetailView::resultWord() const {
    return verdict(givenRating()).word;
}

QString SessionRecordDetailView::resultColor() const {
    return colorName(verdict(givenRating()).color);
}

bool SessionRecordDetailView::showsStoredFeedback() const {
    return !isFresh() && m_record.feedbackRating;
}

QString SessionRecordDetailView::storedSymbol() const {
    return verdict(m_record.feedbackRating).symbol;
}

QString SessionRecordDetailView::storedWord() const {
    return verdict(m_record.feedbackRating).word;
}

QString SessionRecordDetailView::storedColor() const {
    return colorName(verdict(m_record.feedbackRating).color);
}

// MARK: - MEDDIC and facts

bool SessionRecordDetailView::showsMeddic() const {
    return m_record.audience() != AudienceType::coldCall;
}

QString SessionRecordDetailView::scoreText() const {
    return u"%1/%2"_s.arg(m_record.meddic().score()).arg(meddicCriteria);
}

QString SessionRecordDetailView::scoreColor() const {
    return colorName(recordScoreTint(m_record.meddic().score()).role);
}

double SessionRecordDetailView::scoreOpacity() const {
    return recordScoreTint(m_record.meddic().score()).opacity;
}

QString SessionRecordDetailView::discText() const {
    return discName(m_record);
}

QString SessionRecordDetailView::dateText() const {
    return mediumDateShortTime(m_record.createdDate, m_parts.dates);
}

}  // namespace corvellan
