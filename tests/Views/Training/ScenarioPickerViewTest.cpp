#include "Views/Training/ScenarioPickerView.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/SessionFixture.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const ScenarioItem firstScenario{.key = u"renewal_push"_s,
                                 .name = u"Renewal with a new buyer"_s,
                                 .company = u"Acorn Freight"_s,
                                 .industry = u"Logistics"_s};
const ScenarioItem secondScenario{.key = u"cold_start"_s,
                                  .name = u"Cold call to an operations lead"_s,
                                  .company = u"Brightwater Foods"_s,
                                  .industry = u"Food"_s};

class ScenarioPickerViewTest : public testing::Test {
protected:
    ScenarioPickerViewTest() { knows({firstScenario, secondScenario}); }

    ScenarioPickerView& view() {
        if (!m_view)
            m_view = std::make_unique<ScenarioPickerView>(session(), fixture.http);
        return *m_view;
    }
    void forgetView() { m_view.reset(); }
    SessionViewModel& session() { return fixture.session(); }

    void knows(std::vector<ScenarioItem> scenarios) {
        fixture.http.answer(200, ScenariosResponse{.scenarios = std::move(scenarios)}.encode());
    }
    void open() {
        view().appear();
        settle();
    }
    QVariant scenario(int row, const QByteArray& role) { return view().scenarioRows()->value(row, role); }
    QVariant personality(int row, const QByteArray& role) { return view().personalities()->value(row, role); }
    /// The start message that went to the server last.
    StartSessionPayload started() {
        settle();
        EXPECT_FALSE(fixture.ws->sent.empty());
        return fixture.ws->sent.empty() ? StartSessionPayload{}
                                        : std::get<StartSessionPayload>(fixture.ws->sent.back().value);
    }

    SessionFixture fixture;

private:
    std::unique_ptr<ScenarioPickerView> m_view;
};

// MARK: - The request

TEST_F(ScenarioPickerViewTest, theLocalAddressBecomesAnHttpAddressWithoutThePath) {
    session().setServerURL(u"ws://localhost:3001/ws"_s);
    open();
    ASSERT_EQ(fixture.http.requests.size(), 1);
    EXPECT_EQ(fixture.http.requests[0].url, QUrl{u"http://localhost:3001/scenarios"_s});
}

TEST_F(ScenarioPickerViewTest, everyPathNamedWsIsRemovedFromAnAddress) {
    session().setServerURL(u"wss://coach.test/wsx/ws"_s);
    open();
    EXPECT_EQ(fixture.http.requests.at(0).url, QUrl{u"https://coach.testx/scenarios"_s});
}

TEST_F(ScenarioPickerViewTest, theRequestIsAPlainQuestionOfAMinute) {
    fixture.auth->accessToken = u"secret"_s;
    open();
    const HttpRequest& request = fixture.http.requests.at(0);
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.body, QByteArray{});
    EXPECT_EQ(request.timeout, 60s);
    EXPECT_EQ(request.headers, (HttpHeaders{{"Authorization", "Bearer secret"}}));
}

TEST_F(ScenarioPickerViewTest, withoutATokenItAsksAllTheSameAndSendsNoHeader) {
    open();
    ASSERT_EQ(fixture.http.requests.size(), 1);
    EXPECT_EQ(fixture.http.requests[0].headers, HttpHeaders{});
    EXPECT_EQ(view().scenarios().size(), 2);
}

TEST_F(ScenarioPickerViewTest, anAddressThatIsNoneIsToldAndNothingIsAsked) {
    session().setServerURL(u"ws://coach test:port/ws"_s);
    open();
    EXPECT_EQ(view().fetchError(), u"Invalid server URL"_s);
    EXPECT_FALSE(view().isLoading());
    EXPECT_TRUE(fixture.http.requests.empty());
}

// MARK: - The list

TEST_F(ScenarioPickerViewTest, nothingButTheSpinnerShowsUntilTheAnswerIsThere) {
    EXPECT_TRUE(view().isLoading()) << "before the screen has opened, too";
    fixture.http.gate.close();
    QSignalSpy changes{&view(), &ScenarioPickerView::loadingChanged};
    open();
    EXPECT_TRUE(view().isLoading());
    EXPECT_EQ(view().scenarioRows()->rowCount(), 0);
    fixture.http.gate.open();
    settle();
    EXPECT_FALSE(view().isLoading());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(ScenarioPickerViewTest, theFirstScenarioIsSelected) {
    open();
    EXPECT_EQ(view().selectedScenario(), firstScenario);
    EXPECT_EQ(scenario(0, "name"), u"Renewal with a new buyer"_s);
    EXPECT_EQ(scenario(0, "detail"), u"Acorn Freight · Logistics"_s);
    EXPECT_EQ(scenario(0, "isSelected"), true);
    EXPECT_EQ(scenario(1, "isSelected"), false);
    EXPECT_TRUE(view().canStart());
}

TEST_F(ScenarioPickerViewTest, anEmptyListHasNoRowsAndNothingToStart) {
    knows({});
    open();
    EXPECT_EQ(view().scenarioRows()->rowCount(), 0);
    EXPECT_FALSE(view().selectedScenario());
    EXPECT_FALSE(view().canStart());
    EXPECT_FALSE(view().fetchError());
    EXPECT_TRUE(view().hasNoScenarios());
}

TEST_F(ScenarioPickerViewTest, theStatusIsNotLookedAt) {
    fixture.http.answer(503, ScenariosResponse{.scenarios = {secondScenario}}.encode());
    open();
    EXPECT_EQ(view().selectedScenario(), secondScenario);
    EXPECT_FALSE(view().fetchError());
}

TEST_F(ScenarioPickerViewTest, anAnswerThatDoesNotDecodeIsToldInTheDecodersWords) {
    const QByteArray page = "<html><body>Internal Server Error</body></html>";
    fixture.http.answer(500, page);
    open();
    EXPECT_EQ(view().fetchError(), u"Failed to load: "_s + ScenariosResponse::decode(page).error().errorDescription());
    EXPECT_FALSE(view().isLoading());
    EXPECT_FALSE(view().canStart());
    EXPECT_FALSE(view().hasNoScenarios()) << "nobody knows that";
    EXPECT_EQ(view().personalities()->rowCount(), 5) << "the sections below are there";
}

TEST_F(ScenarioPickerViewTest, aListWithoutPersonalitiesDoesNotDecode) {
    fixture.http.answer(200, R"({"scenarios": []})");
    open();
    EXPECT_TRUE(view().fetchErrorText().startsWith(u"Failed to load: "_s)) << qPrintable(view().fetchErrorText());
}

TEST_F(ScenarioPickerViewTest, aServerOutOfReachIsTold) {
    fixture.http.fail();
    open();
    EXPECT_EQ(view().fetchError(), u"Failed to load: "_s + FakeHttp::unreachable().errorDescription());
    EXPECT_FALSE(view().isLoading());
}

TEST_F(ScenarioPickerViewTest, openingAgainForgetsEverythingAndFetchesAgain) {
    open();
    view().selectScenario(1);
    view().selectDisc(2);
    view().setIsGameMode(true);
    fixture.http.fail();
    open();
    EXPECT_EQ(fixture.http.requests.size(), 2);
    EXPECT_TRUE(view().fetchError());
    EXPECT_TRUE(view().scenarios().empty());
    EXPECT_FALSE(view().selectedScenario());
    EXPECT_EQ(view().selectedDisc(), DiscType::unknown);
    EXPECT_FALSE(view().isGameMode());

    knows({secondScenario});
    open();
    EXPECT_FALSE(view().fetchError());
    EXPECT_EQ(view().selectedScenario(), secondScenario);
}

TEST_F(ScenarioPickerViewTest, aLateAnswerOfAnEarlierOpeningChangesNothing) {
    fixture.http.gate.close();
    open();
    knows({secondScenario});
    open();
    fixture.http.gate.open();
    settle();
    EXPECT_EQ(view().scenarios(), std::vector{secondScenario});
}

TEST_F(ScenarioPickerViewTest, aViewThatGoesDuringAFetchLeavesNothingBehind) {
    fixture.http.gate.close();
    open();
    forgetView();
    fixture.http.gate.open();
    settle();
    EXPECT_EQ(fixture.http.requests.size(), 1);
}

// MARK: - Choices

TEST_F(ScenarioPickerViewTest, aRowThatIsNoneSelectsNothing) {
    open();
    view().selectScenario(1);
    view().selectScenario(2);
    view().selectScenario(-1);
    EXPECT_EQ(view().selectedScenario(), secondScenario);
    view().selectDisc(3);
    view().selectDisc(5);
    view().selectDisc(-1);
    EXPECT_EQ(view().selectedDisc(), DiscType::conscientious);
}

TEST_F(ScenarioPickerViewTest, twoScenariosWithOneKeyAreTwoRows) {
    knows({firstScenario, firstScenario});
    open();
    view().selectScenario(1);
    EXPECT_EQ(scenario(0, "isSelected"), false);
    EXPECT_EQ(scenario(1, "isSelected"), true);
}

TEST_F(ScenarioPickerViewTest, thePersonalitiesStandInTheirOrderWithTheirColours) {
    struct Chip {
        QString label;
        QString colorName;
        double strength;
    };
    const std::vector<Chip> chips{{u"Dominant"_s, u"red"_s, 0.7},
                                  {u"Influential"_s, u"yellow"_s, 0.7},
                                  {u"Steady"_s, u"green"_s, 0.7},
                                  {u"Conscientious"_s, u"blue"_s, 0.7},
                                  {u"Random"_s, u"gray"_s, 0.5}};
    ASSERT_EQ(view().personalities()->rowCount(), static_cast<int>(chips.size()));
    for (int row = 0; row < static_cast<int>(chips.size()); ++row) {
        const Chip& chip = chips[static_cast<std::size_t>(row)];
        EXPECT_EQ(personality(row, "label"), chip.label);
        EXPECT_EQ(personality(row, "colorName"), chip.colorName);
        EXPECT_EQ(personality(row, "strength"), chip.strength);
        EXPECT_EQ(personality(row, "isSelected"), chip.label == u"Random"_s) << "the choice is the server's at first";
    }
}

TEST_F(ScenarioPickerViewTest, theGameChangesTheButtonAndTellsItsRules) {
    EXPECT_EQ(view().startTitle(), u"Start Training"_s);
    EXPECT_EQ(view().startSymbol(), u"play.fill"_s);
    EXPECT_EQ(view().startColorName(), u"cyan"_s);
    EXPECT_EQ(view().gameCaption(), QString{});
    QSignalSpy changes{&view(), &ScenarioPickerView::gameModeChanged};
    view().setIsGameMode(true);
    view().setIsGameMode(true);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(view().startTitle(), u"Start Game"_s);
    EXPECT_EQ(view().startSymbol(), u"gamecontroller.fill"_s);
    EXPECT_EQ(view().startColorName(), u"orange"_s);
    EXPECT_EQ(view().gameCaption(), u"Score points for open MEDDIC questions. Closed questions = penalty."_s);
}

// MARK: - Start

TEST_F(ScenarioPickerViewTest, aTrainingStartsWithWhatIsSelectedAndNothingElse) {
    session().setCoachingMode(AudienceType::coldCall);
    open();
    view().selectScenario(1);
    view().selectDisc(0);
    view().setIsGameMode(true);
    view().startTrain();
    EXPECT_EQ(started(), (StartSessionPayload{.simMode = true,
                                              .scenario = u"cold_start"_s,
                                              .discType = DiscType::dominant,
                                              .clientVersion = u"1.2.3"_s,
                                              .audience = AudienceType::coldCall,
                                              .gameMode = true}));
}

TEST_F(ScenarioPickerViewTest, randomPassesTheUnknownTypeOn) {
    open();
    view().startTrain();
    EXPECT_EQ(started().discType, DiscType::unknown);
    EXPECT_FALSE(started().gameMode);
}

TEST_F(ScenarioPickerViewTest, withoutAScenarioItStartsWithNone) {
    fixture.http.fail();
    open();
    view().startTrain();
    EXPECT_TRUE(started().simMode);
    EXPECT_EQ(started().scenario, std::nullopt);
}

TEST_F(ScenarioPickerViewTest, aSecondStartWaitsWhileTheFirstIsOnItsWay) {
    open();
    fixture.ws->connectGate.close();
    QSignalSpy changes{&view(), &ScenarioPickerView::canStartChanged};
    view().startTrain();
    settle();
    EXPECT_FALSE(view().canStart());
    EXPECT_GT(changes.count(), 0);
    view().startTrain();
    settle();
    EXPECT_EQ(fixture.ws->urls.size(), 1);
}

}  // namespace

}  // namespace corvellan::test
