#include "TrainingDriver.h"

#include "Support/SessionFixture.h"
#include "Views/Theme.h"
#include "Views/Training/ScenarioPickerView.h"

namespace corvellan::test {

using namespace Qt::StringLiterals;

struct TrainingDriver::World {
    SessionFixture fixture;
    Theme theme;
    ScenarioPickerView picker{fixture.session(), fixture.http};
};

TrainingDriver::TrainingDriver() {
    reset();
}

TrainingDriver::~TrainingDriver() = default;

QObject* TrainingDriver::picker() {
    return &m_world->picker;
}

QObject* TrainingDriver::theme() {
    return &m_world->theme;
}

void TrainingDriver::reset() {
    m_world = std::make_unique<World>();
    setScenarios(3);
    Q_EMIT madeAnew();
}

void TrainingDriver::setScenarios(int count) {
    ScenariosResponse response;
    for (int i = 1; i <= count; ++i)
        response.scenarios.push_back({.key = u"scenario-%1"_s.arg(i),
                                      .name = u"Scenario %1"_s.arg(i),
                                      .company = u"Company %1"_s.arg(i),
                                      .industry = u"Logistics"_s});
    m_world->fixture.http.answer(200, response.encode());
}

void TrainingDriver::refuseWithAPage() {
    m_world->fixture.http.answer(500, "<html>Internal Server Error</html>");
}

void TrainingDriver::holdAnswers(bool isHeld) {
    if (isHeld)
        m_world->fixture.http.gate.close();
    else
        m_world->fixture.http.gate.open();
    settle();
}

int TrainingDriver::requests() const {
    settle();
    return static_cast<int>(m_world->fixture.http.requests.size());
}

QVariantMap TrainingDriver::started() const {
    settle();
    const auto& sent = m_world->fixture.ws->sent;
    const auto* const payload = sent.empty() ? nullptr : std::get_if<StartSessionPayload>(&sent.back().value);
    if (!payload)
        return {};
    return {{u"simMode"_s, payload->simMode},
            {u"scenario"_s, payload->scenario.value_or(QString{})},
            {u"discType"_s, payload->discType ? tableText(rawValue(*payload->discType)) : QString{}},
            {u"gameMode"_s, payload->gameMode}};
}

}  // namespace corvellan::test
