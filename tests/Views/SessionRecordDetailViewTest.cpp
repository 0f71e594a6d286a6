#include "Views/SessionRecordDetailView.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QUrl>

#include "HistoryWorld.h"
#include "Views/History/SessionReport.h"

namespace corvellan::test {

using namespace std::chrono_literals;

namespace {

class SessionRecordDetailViewTest : public testing::Test {
protected:
    SessionRecordDetailView& show(SessionRecord record) {
        m_view = std::make_unique<SessionRecordDetailView>(
            std::move(record), &world.session(), [this] { ++backs; }, world.detailParts());
        return *m_view;
    }
    SessionRecordDetailView& showWithoutSession(SessionRecord record) {
        m_view = std::make_unique<SessionRecordDetailView>(
            std::move(record), nullptr, [this] { ++backs; }, world.detailParts());
        return *m_view;
    }
    [[nodiscard]] SessionRecord call(std::chrono::milliseconds ago = 1h) const {
        return world.recordOf({.callId = u"c-1"_s}, ago);
    }
    [[nodiscard]] static SessionRecord scored(int score) {
        return SessionRecord::make({.meddic = {.metrics = score > 0,
                                               .economicBuyer = score > 1,
                                               .decisionCriteria = score > 2,
                                               .decisionProcess = score > 3,
                                               .identifyPain = score > 4,
                                               .champion = score > 5}},
                                   WallTime{});
    }
    void end(const QString& callId = u"c-1"_s) { world.session().setLastSummary(SummaryPayload{.callId = callId}); }
    /// What the one report to the server said.
    QJsonObject reported() {
        world.quieten();
        EXPECT_EQ(world.fixture.http.requests.size(), 1U);
        return QJsonDocument::fromJson(world.fixture.http.requests.at(0).body).object();
    }
    static QString clipboard() { return QGuiApplication::clipboard()->text(); }

    HistoryWorld world;
    int backs = 0;

private:
    std::unique_ptr<SessionRecordDetailView> m_view;
};

}  // namespace

// MARK: - Fresh and editable

TEST_F(SessionRecordDetailViewTest, aRecordIsFreshWithASummaryAndACall) {
    EXPECT_FALSE(show(call()).isFresh());
    end();
    EXPECT_TRUE(show(call()).isFresh());
    EXPECT_FALSE(show(world.recordOf({})).isFresh()) << "no call";
    EXPECT_FALSE(showWithoutSession(call()).isFresh());
}

TEST_F(SessionRecordDetailViewTest, almostADayOldItStillOffersTheButtons) {
    auto& view = show(call(23h + 59min));
    EXPECT_TRUE(view.canEditOutcome());
    EXPECT_TRUE(view.showsFeedback());
    EXPECT_TRUE(view.canRate());
    EXPECT_EQ(view.feedbackTitle(), u"Feedback"_s);
}

TEST_F(SessionRecordDetailViewTest, aDayOldItOffersNothingMore) {
    EXPECT_TRUE(show(call(24h - 1ms)).canEditOutcome());
    auto& view = show(call(24h));
    EXPECT_FALSE(view.canEditOutcome());
    EXPECT_FALSE(view.showsFeedback());
    EXPECT_FALSE(view.canRate());
}

TEST_F(SessionRecordDetailViewTest, withoutACallThereIsNothingToRate) {
    auto& view = show(world.recordOf({}));
    EXPECT_FALSE(view.canEditOutcome());
    EXPECT_FALSE(view.showsFeedback());
}

TEST_F(SessionRecordDetailViewTest, withoutASessionThereIsNoFeedback) {
    auto& view = showWithoutSession(call());
    EXPECT_FALSE(view.showsFeedback());
    view.rateHelpful();
    view.setFeedbackNote(u"x"_s);
    EXPECT_EQ(view.feedbackNote(), QString{});
    EXPECT_TRUE(world.fixture.http.requests.empty());
}

TEST_F(SessionRecordDetailViewTest, aFreshRecordAsksHowItWas) {
    end();
    EXPECT_EQ(show(call()).feedbackTitle(), u"How was this session?"_s);
}

TEST_F(SessionRecordDetailViewTest, theDayMayPassWhileItShows) {
    auto& view = show(call(23h));
    world.fixture.clock.advance(1h);
    view.rateHelpful();
    world.quieten();
    EXPECT_TRUE(world.fixture.http.requests.empty());
    EXPECT_FALSE(world.session().feedbackSubmitted());
}

// MARK: - Feedback

TEST_F(SessionRecordDetailViewTest, helpfulAndNotHelpfulAreReportedWithTheNote) {
    auto& view = show(call());
    QSignalSpy notes{&view, &SessionRecordDetailView::feedbackNoteChanged};
    view.setFeedbackNote(u"Good tips"_s);
    EXPECT_EQ(notes.count(), 1);
    EXPECT_EQ(world.session().feedbackNote(), u"Good tips"_s);
    view.rateNotHelpful();
    EXPECT_EQ(reported(), (QJsonObject{{u"rating"_s, -1}, {u"note"_s, u"Good tips"_s}}));
    EXPECT_EQ(world.fixture.http.requests.at(0).url, QUrl{u"https://coach.test/calls/c-1/feedback"_s});
}

TEST_F(SessionRecordDetailViewTest, anEmptyNoteIsAbsent) {
    auto& view = show(call());
    view.setFeedbackNote({});
    view.rateHelpful();
    EXPECT_EQ(reported(), (QJsonObject{{u"rating"_s, 1}}));
}

TEST_F(SessionRecordDetailViewTest, onceGivenTheResultTakesTheButtonsPlace) {
    auto& view = show(call());
    QSignalSpy changes{&view, &SessionRecordDetailView::feedbackChanged};
    view.rateHelpful();
    EXPECT_GE(changes.count(), 1);
    EXPECT_FALSE(view.canRate());
    EXPECT_TRUE(view.showsFeedback());
    EXPECT_EQ(view.resultWord(), u"Helpful"_s);
    EXPECT_EQ(view.resultSymbol(), u"hand.thumbsup.fill"_s);
    EXPECT_EQ(view.resultColor(), u"green"_s);
    view.rateNotHelpful();
    EXPECT_EQ(view.resultWord(), u"Helpful"_s) << "it is given once";
    world.quieten();
}

TEST_F(SessionRecordDetailViewTest, aFailedPostShowsTheResultAllTheSame) {
    world.fixture.http.fail();
    auto& view = show(call());
    view.rateNotHelpful();
    world.quieten();
    EXPECT_FALSE(view.canRate());
    EXPECT_EQ(view.resultWord(), u"Not helpful"_s);
    EXPECT_EQ(view.resultSymbol(), u"hand.thumbsdown.fill"_s);
    EXPECT_EQ(view.resultColor(), u"orange"_s);
}

TEST_F(SessionRecordDetailViewTest, theSessionsRatingComesBeforeTheRecords) {
    auto rated = call();
    rated.feedbackRating = -1;
    auto& view = show(rated);
    EXPECT_FALSE(view.canRate());
    EXPECT_EQ(view.resultWord(), u"Not helpful"_s);
    world.session().setFeedbackRating(1);
    EXPECT_EQ(view.resultWord(), u"Helpful"_s);
}

TEST_F(SessionRecordDetailViewTest, anyOtherRatingReadsAsNotHelpful) {
    for (const std::int64_t rating : {-1, 0, 2, 5}) {
        auto rated = call(72h);
        rated.feedbackRating = rating;
        EXPECT_EQ(show(rated).storedWord(), u"Not helpful"_s) << rating;
    }
}

TEST_F(SessionRecordDetailViewTest, aRatingOfDaysAgoIsOnlyRead) {
    auto rated = call(48h);
    rated.feedbackRating = 1;
    auto& view = show(rated);
    EXPECT_FALSE(view.showsFeedback());
    EXPECT_FALSE(view.canRate());
    EXPECT_TRUE(view.showsStoredFeedback());
    EXPECT_EQ(view.storedWord(), u"Helpful"_s);
    EXPECT_EQ(view.storedSymbol(), u"hand.thumbsup.fill"_s);
    EXPECT_EQ(view.storedColor(), u"green"_s);
}

TEST_F(SessionRecordDetailViewTest, theReadOnlyVerdictIsForRecordsThatAreNotFresh) {
    auto rated = call();
    rated.feedbackRating = 1;
    EXPECT_TRUE(show(rated).showsStoredFeedback());
    end();
    EXPECT_FALSE(show(rated).showsStoredFeedback());
    world.session().setLastSummary(std::nullopt);
    EXPECT_FALSE(show(call()).showsStoredFeedback()) << "none was given";
}

// MARK: - What it shows

TEST_F(SessionRecordDetailViewTest, theScoreIsJudgedHarderThanALiveOne) {
    struct Row {
        int score;
        QString color;
        double opacity;
    };
    for (const Row& row : {Row{0, u"red"_s, 0.7}, Row{1, u"red"_s, 0.7}, Row{2, u"red"_s, 0.7}, Row{3, u"yellow"_s, 1},
                           Row{4, u"yellow"_s, 1}, Row{5, u"green"_s, 1}, Row{6, u"green"_s, 1}}) {
        auto& view = show(scored(row.score));
        EXPECT_EQ(view.scoreText(), QString::number(row.score) + u"/6"_s);
        EXPECT_EQ(view.scoreColor(), row.color) << row.score;
        EXPECT_EQ(view.scoreOpacity(), row.opacity) << row.score;
    }
}

TEST_F(SessionRecordDetailViewTest, aColdCallHasNoMeddic) {
    EXPECT_FALSE(show(world.recordOf({.audience = AudienceType::coldCall})).showsMeddic());
    for (const auto audience : {AudienceType::directSale, AudienceType::channelPartner, AudienceType::discovery})
        EXPECT_TRUE(show(world.recordOf({.audience = audience})).showsMeddic());
}

TEST_F(SessionRecordDetailViewTest, theCriteriaStandWithTheirEvidence) {
    auto record = world.recordOf({.meddic = {.metrics = true, .identifyPain = true}});
    record.meddicEvidence = std::vector<std::optional<QString>>{u"20 % churn"_s, std::nullopt, u""_s};
    auto& rows = *show(record).criteria();
    const QStringList labels{u"Metrics"_s,          u"Economic Buyer"_s, u"Decision Criteria"_s,
                             u"Decision Process"_s, u"Pain"_s,           u"Champion"_s};
    const QString letters = u"MEDDIC"_s;
    for (int row = 0; row < meddicCriteria; ++row) {
        EXPECT_EQ(rows.value(row, "label"), labels[row]);
        EXPECT_EQ(rows.value(row, "letter"), QString{letters[row]});
        EXPECT_EQ(rows.value(row, "isMet"), row == 0 || row == 4);
        EXPECT_EQ(rows.value(row, "evidence"), row == 0 ? u"20 % churn"_s : QString{});
    }
    EXPECT_EQ(rows.value(0, "spoken"), u"Metrics: confirmed, 20 % churn"_s);
    EXPECT_EQ(rows.value(1, "spoken"), u"Economic Buyer: open"_s);
}

TEST_F(SessionRecordDetailViewTest, theFactsAndBadgesAreTheRecords) {
    auto& view = show(world.recordOf({.durationSecs = 75,
                                      .turns = 12,
                                      .disc = {.discType = DiscType::conscientious},
                                      .coachingPoints = {u"Ask who signs"_s},
                                      .wasTrainMode = true,
                                      .companyName = u"Nordwind"_s,
                                      .audience = AudienceType::discovery}));
    EXPECT_EQ(view.companyName(), u"Nordwind"_s);
    EXPECT_TRUE(view.isTraining());
    EXPECT_EQ(view.badge(), u"Discovery"_s);
    EXPECT_EQ(view.badgeColor(), u"green"_s);
    EXPECT_EQ(view.durationText(), u"1m 15s"_s);
    EXPECT_EQ(view.turnsText(), u"12"_s);
    EXPECT_EQ(view.discText(), u"Conscientious"_s);
    EXPECT_EQ(view.dateText(), u"02.03.2026, 11:00"_s);
    EXPECT_EQ(view.coachingPoints(), QStringList{u"Ask who signs"_s});
    EXPECT_FALSE(view.hasTranscript());
    EXPECT_EQ(show(world.recordOf({})).badge(), QString{});
}

TEST_F(SessionRecordDetailViewTest, transcriptLinesAreTaggedByTheirSpeaker) {
    auto& lines =
        *show(world.recordOf({.transcript = {u"[Mic] a"_s, u"[Audio] b"_s, u"[Coach] c"_s, u"[Mic]d"_s}})).transcript();
    struct Row {
        QString tag, tagColor, text, textColor;
        double opacity;
    };
    const std::vector rows{Row{u"R"_s, u"blue"_s, u"a"_s, {}, 0.7}, Row{u"C"_s, u"green"_s, u"b"_s, {}, 0.6},
                           Row{u"AI"_s, u"cyan"_s, u"c"_s, u"cyan"_s, 0.7},
                           Row{u"?"_s, u"gray"_s, u"[Mic]d"_s, {}, 0.4}};
    ASSERT_EQ(lines.rowCount(), 4);
    for (int i = 0; i < 4; ++i) {
        const auto& row = rows.at(static_cast<std::size_t>(i));
        const auto value = [&](int role) { return lines.data(lines.index(i), role); };
        EXPECT_EQ(value(StoredTranscriptModel::tagRole), row.tag);
        EXPECT_EQ(value(StoredTranscriptModel::tagColorRole), row.tagColor);
        EXPECT_EQ(value(StoredTranscriptModel::textRole), row.text);
        EXPECT_EQ(value(StoredTranscriptModel::textColorRole), row.textColor);
        EXPECT_EQ(value(StoredTranscriptModel::textOpacityRole), row.opacity);
    }
}

TEST_F(SessionRecordDetailViewTest, backAsksWhoeverShowsIt) {
    show(call()).back();
    EXPECT_EQ(backs, 1);
}

// MARK: - Copying and sharing

TEST_F(SessionRecordDetailViewTest, copyingTheTranscriptKeepsThePrefixes) {
    auto& view = show(world.recordOf({.transcript = {u"[Mic] a"_s, u"b"_s}}));
    view.copyTranscript();
    EXPECT_EQ(clipboard(), u"[Mic] a\nb"_s);
    EXPECT_EQ(view.notice(), u"Transcript copied."_s);
}

TEST_F(SessionRecordDetailViewTest, copyingAnEmptyTranscriptEmptiesTheClipboard) {
    QGuiApplication::clipboard()->setText(u"old"_s);
    auto& view = show(call());
    view.copyTranscript();
    EXPECT_EQ(clipboard(), QString{});
    EXPECT_EQ(view.notice(), u"This session has no transcript."_s);
}

TEST_F(SessionRecordDetailViewTest, copyingTheSummaryCopiesTheReport) {
    const auto record = call();
    auto& view = show(record);
    view.copySessionSummary();
    EXPECT_EQ(clipboard(), sessionShareText(record, {"de_DE", u"Europe/Berlin"_s}));
    EXPECT_EQ(view.notice(), u"Summary copied."_s);
}

TEST_F(SessionRecordDetailViewTest, aMailHoldsTheReport) {
    auto record = world.recordOf({.coachingPoints = {u"100 % & more + ü"_s}, .companyName = u"A & B"_s});
    auto& view = show(record);
    view.shareByMail();
    settle();
    ASSERT_EQ(world.desktop.browser.mails.size(), 1U);
    EXPECT_EQ(world.desktop.browser.mails[0].first, u"Session report: A & B"_s);
    EXPECT_EQ(world.desktop.browser.mails[0].second, view.sessionShareText());
    EXPECT_EQ(view.notice(), u"Handed to your mail program."_s);
}

TEST_F(SessionRecordDetailViewTest, withoutAMailProgramItSaysWhy) {
    world.desktop.browser.failure = Error{TransportError{u"xdg-open is not installed."_s}};
    auto& view = show(call());
    view.shareByMail();
    settle();
    EXPECT_EQ(view.notice(), u"xdg-open is not installed. You can save the report and attach it."_s);
}

TEST_F(SessionRecordDetailViewTest, aMailThatIsStillOnItsWayMayOutliveTheScreen) {
    world.desktop.browser.gate.close();
    show(call()).shareByMail();
    settle();
    show(call());
    world.desktop.browser.gate.open();
    settle();
    EXPECT_EQ(world.desktop.browser.mails.size(), 1U);
}

TEST_F(SessionRecordDetailViewTest, theReportIsSavedAndItsPlaceTold) {
    auto& view = show(call());
    view.shareAsFile();
    const QString path = world.folder.filePath(u"Documents/Session 2026-03-02 10.00.md"_s);
    EXPECT_EQ(view.notice(), u"Saved as "_s + path);
    QFile file{path};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()), view.sessionShareText());
}

TEST_F(SessionRecordDetailViewTest, aReportThatCannotBeSavedSaysSo) {
    QFile inTheWay{world.folder.filePath(u"Documents"_s)};
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    auto& view = show(call());
    view.shareAsFile();
    EXPECT_TRUE(view.notice().startsWith(u"The report could not be saved: "_s)) << qPrintable(view.notice());
}

}  // namespace corvellan::test
