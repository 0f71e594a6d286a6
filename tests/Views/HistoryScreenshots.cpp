#include "ScreenshotStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Arrange = std::function<void(const ScreenshotScene&)>;

ScreenshotState pictured(const QString& name, Arrange arrange) {
    return {.name = name, .prepare = [](SessionViewModel&) {}, .isCall = false, .arrange = std::move(arrange)};
}

ScreenshotState light(ScreenshotState state) {
    state.name += u"-light"_s;
    state.isLight = true;
    return state;
}

ScreenshotState sized(ScreenshotState state, const QString& suffix, QSize size) {
    state.name += suffix;
    state.size = size;
    return state;
}

/// A record of the company, so long ago, with the first so many criteria.
SessionRecord session(const ScreenshotScene& scene, const QString& company, std::chrono::seconds ago, int score,
                      AudienceType audience = AudienceType::directSale) {
    return SessionRecord::make({.durationSecs = 420 + 97 * score,
                                .turns = 18 + 3 * score,
                                .meddic = {.metrics = score > 0,
                                           .economicBuyer = score > 1,
                                           .decisionCriteria = score > 2,
                                           .decisionProcess = score > 5,
                                           .identifyPain = score > 3,
                                           .champion = score > 4},
                                .companyName = company.isEmpty() ? std::nullopt : std::optional{company},
                                .audience = audience},
                               scene.fixture.clock.wallNow() - ago);
}

void keepSome(const ScreenshotScene& scene) {
    auto& records = scene.store.records;
    records.push_back(session(scene, u"Nordwind Logistics GmbH"_s, 25min, 5));
    records.push_back(session(scene, u"Halden Freight"_s, 2h, 3, AudienceType::channelPartner));
    records.push_back(session(scene, u"Brightwater Dental"_s, 3h, 0, AudienceType::coldCall));
    auto training = session(scene, {}, 24h, 4);
    training.scenario = u"The hesitant procurement lead"_s;
    training.wasTrainMode = true;
    records.push_back(training);
    records.push_back(session(scene, u"Kestrel Robotics"_s, 25h, 6, AudienceType::discovery));
    records.push_back(session(scene,
                              u"The Extraordinarily Long-Named Holding Company of Northern Europe and Far Beyond"_s,
                              24h * 6, 2, AudienceType::discovery));
    records.push_back(session(scene, u"Olbrich & Söhne"_s, 24h * 6 + 2h, 1));
    for (int i = 0; i < 40; ++i)
        records.push_back(session(scene, u"Customer %1"_s.arg(i + 1), 24h * (9 + i), i % 7));
}

void openHistory(const ScreenshotScene& scene) {
    scene.signIn();
    scene.session().setModelContext(&scene.store);
    settle();
    scene.openTab(u"history"_s);
}

Arrange filtered(int mode, int range) {
    return [=](const ScreenshotScene& scene) {
        keepSome(scene);
        openHistory(scene);
        scene.views().history()->setFilterModeIndex(mode);
        scene.views().history()->setTimeRangeIndex(range);
    };
}

ScreenshotStateList listStates() {
    const auto list = pictured(u"history-list"_s, filtered(2, 3));
    const auto empty = pictured(u"history-empty"_s, openHistory);
    auto focused = list;
    focused.name = u"history-focus"_s;
    focused.tabs = 1;
    auto scrolled = list;
    scrolled.name = u"history-list-scrolled"_s;
    scrolled.pages = 1;
    return {list,
            light(list),
            sized(list, u"-wide"_s, {760, 700}),
            sized(list, u"-smallest"_s, {520, 400}),
            scrolled,
            focused,
            empty,
            light(empty),
            pictured(u"history-syncing"_s,
                     [](const ScreenshotScene& scene) {
                         scene.fixture.http.gate.close();
                         openHistory(scene);
                     }),
            pictured(u"history-no-match"_s, [](const ScreenshotScene& scene) {
                scene.store.records.push_back(session(scene, u"Halden Freight"_s, 24h * 3, 3));
                openHistory(scene);
                scene.views().history()->setFilterModeIndex(1);
            })};
}

SessionRecord rich(const ScreenshotScene& scene, std::chrono::seconds ago) {
    auto record = SessionRecord::make(
        {.durationSecs = 1'394,
         .turns = 42,
         .meddic = {.metrics = true, .economicBuyer = true, .decisionProcess = true, .identifyPain = true},
         .disc = {.discType = DiscType::dominant, .confidence = DiscConfidence::high},
         .coachingPoints = {u"Ask for the names of everyone who signs before you send a quote."_s,
                            u"You spoke 61 % of the time; leave more silence after a question."_s},
         .transcript =
             {u"[Mic] Hi Tom, this is Anna from Fernhill. Thanks for taking the time today."_s,
              u"[Audio] Hello Anna. I only have a few minutes, so please keep it brief."_s,
              u"[Mic] Of course. What does an outage cost you today?"_s, u"[Coach] Ask who signs off on the budget"_s,
              u"[Audio] Forty thousand euros, three times last quarter, and that is before the fines that our "
              "own customers charge us for every hour."_s,
              u"A line without a known mark"_s},
         .companyName = u"Nordwind Logistics GmbH"_s,
         .callId = u"call-1"_s},
        scene.fixture.clock.wallNow() - ago);
    record.meddicEvidence = {u"\"Each outage costs us forty thousand euros\""_s, u"\"Sandra in finance decides\""_s,
                             std::nullopt, u"\"Pilot, then the board in June\""_s,
                             u"\"We lose two days a month to manual reports\""_s};
    return record;
}

/// The summary of one record, of so long ago, after a change.
template <typename Change>
Arrange summarized(std::chrono::seconds ago, Change change) {
    return [=](const ScreenshotScene& scene) {
        SessionRecord record = rich(scene, ago);
        change(record);
        scene.store.records.push_back(record);
        openHistory(scene);
        scene.views().history()->open(0);
        settle();
    };
}

ScreenshotStateList summaryStates() {
    /// As large as the window gets between calls.
    constexpr QSize whole{760, 700};
    const auto asStored = [](SessionRecord&) {};
    const auto rated = [](SessionRecord& record) { record.feedbackRating = 1; };
    const auto fresh = pictured(u"summary-fresh"_s, [](const ScreenshotScene& scene) {
        scene.store.records.push_back(rich(scene, 3min));
        scene.signIn();
        scene.session().setModelContext(&scene.store);
        scene.session().setLastSummary(SummaryPayload{.callId = u"call-1"_s});
        settle();
    });
    const auto longOne =
        pictured(u"summary-long-transcript"_s, summarized(48h, [](SessionRecord& record) {
                     for (int i = 0; i < 10'000; ++i)
                         record.transcript.append((i % 2 == 0 ? u"[Mic] "_s : u"[Audio] "_s) +
                                                  u"Line %1 of a call that went on for a whole day."_s.arg(i + 7));
                 }));
    auto longEnd = longOne;
    longEnd.name = u"summary-long-transcript-scrolled"_s;
    longEnd.pages = 3;
    auto focused = fresh;
    focused.name = u"summary-focus"_s;
    focused.tabs = 1;
    return {fresh,
            focused,
            sized(fresh, u"-whole"_s, whole),
            light(sized(fresh, u"-whole"_s, whole)),
            sized(fresh, u"-smallest"_s, {520, 400}),
            sized(pictured(u"summary-editable"_s, summarized(5h, asStored)), {}, whole),
            sized(pictured(u"summary-rated"_s, summarized(5h, rated)), {}, whole),
            sized(pictured(u"summary-old"_s, summarized(48h, rated)), {}, whole),
            sized(pictured(u"summary-cold-call"_s, summarized(48h,
                                                              [](SessionRecord& record) {
                                                                  record.audienceRaw = u"cold_call"_s;
                                                                  record.feedbackRating = -1;
                                                              })),
                  {}, whole),
            pictured(u"summary-training"_s, summarized(48h,
                                                       [](SessionRecord& record) {
                                                           record.wasTrainMode = true;
                                                           record.companyName.reset();
                                                           record.scenario = u"The hesitant procurement lead"_s;
                                                       })),
            longOne,
            longEnd};
}

}  // namespace

ScreenshotStateList historyStates() {
    auto states = listStates();
    const auto summaries = summaryStates();
    states.insert(states.end(), summaries.begin(), summaries.end());
    return states;
}

}  // namespace corvellan::test
