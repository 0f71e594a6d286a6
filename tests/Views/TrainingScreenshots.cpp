#include "App/Panel/StealthPanel.h"
#include "ScreenshotStates.h"
#include "Support/SessionFixture.h"
#include "Views/ViewStates.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

namespace {

ScenariosResponse someScenarios() {
    return {
        .scenarios = {
            {.key = u"a"_s,
             .name = u"The haulier on spreadsheets"_s,
             .company = u"Halden Freight"_s,
             .industry = u"Road freight"_s},
            {.key = u"b"_s, .name = u"A renewal with open cases"_s, .company = u"Northwind"_s, .industry = u"Retail"_s},
            {.key = u"c"_s,
             .name = u"Price before demo"_s,
             .company = u"Ostler & Finch Foods"_s,
             .industry = u"Food"_s},
            {.key = u"d"_s,
             .name = u"A cold call to a busy planner"_s,
             .company = u"Marlow Transit"_s,
             .industry = u"Public transport"_s}}};
}

void answerWith(SessionFixture& fixture, const ScenariosResponse& response) {
    fixture.http.answer(200, response.encode());
}

ScreenshotState training(const QString& name, std::function<void(SessionFixture&)> answer) {
    ScreenshotState state{
        .name = name,
        .prepare =
            [](SessionViewModel& session) { session.setUserEmail(u"sandra.weiss@nordwind-logistics.example"_s); },
        .isCall = false};
    // The screen has only just begun to ask.
    state.arrange = [answer = std::move(answer)](const ScreenshotScene& scene) {
        answer(scene.fixture);
        settle();
    };
    state.tab = u"train"_s;
    return state;
}

}  // namespace

ScreenshotStateList trainingStates() {
    const auto list = training(u"train-dark"_s, [](SessionFixture& fixture) { answerWith(fixture, someScenarios()); });
    ScreenshotStateList states{list};

    ScreenshotState light = list;
    light.name = u"train-light"_s;
    light.isLight = true;
    states.push_back(light);

    states.push_back(training(u"train-loading"_s, [](SessionFixture& fixture) { fixture.http.gate.close(); }));
    ScreenshotState error = training(u"train-error"_s, [](SessionFixture& fixture) {
        fixture.http.answer(500, "<html>Internal Server Error</html>");
    });
    states.push_back(error);
    error.name = u"train-error-light"_s;
    error.isLight = true;
    states.push_back(error);
    states.push_back(training(u"train-empty"_s, [](SessionFixture& fixture) { answerWith(fixture, {}); }));
    states.push_back(training(u"train-many"_s, [](SessionFixture& fixture) {
        ScenariosResponse response;
        for (int i = 1; i <= 200; ++i)
            response.scenarios.push_back({.key = QString::number(i),
                                          .name = u"Scenario %1 with a name that is rather longer than a row of "
                                                  "this window can ever hold, whatever its size"_s.arg(i),
                                          .company = u"A company"_s,
                                          .industry = u"An industry"_s});
        answerWith(fixture, response);
    }));

    for (const bool isLight : {false, true}) {
        ScreenshotState game = list;
        game.name = isLight ? u"train-game-light"_s : u"train-game"_s;
        game.isLight = isLight;
        const int disc = isLight ? 1 : 0;
        game.arrange = [disc](const ScreenshotScene& scene) {
            answerWith(scene.fixture, someScenarios());
            settle();
            ScenarioPickerView& picker = *scene.panel.views().training();
            picker.selectScenario(2);
            picker.selectDisc(disc);
            picker.setIsGameMode(true);
        };
        states.push_back(game);
    }
    for (const int tabs : {1, 2, 3, 4}) {
        ScreenshotState focused = list;
        focused.name = u"train-focus-%1"_s.arg(tabs);
        focused.tabs = tabs;
        states.push_back(focused);
    }
    ScreenshotState smallest = list;
    smallest.name = u"train-smallest"_s;
    smallest.size = QSize{520, 400};
    states.push_back(smallest);
    return states;
}

}  // namespace corvellan::test
