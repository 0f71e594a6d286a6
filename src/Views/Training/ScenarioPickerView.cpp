#include "ScenarioPickerView.h"

#include <QUrl>

#include "Services/Protocols/HttpClientProtocol.h"
#include "ViewModels/SessionViewModel.h"
#include "Views/Theme.h"

namespace corvellan {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto fetchTimeout = 60s;
/// Thousands of scenarios; a longer answer is no list to pick from.
constexpr qint64 longestAnswer = qint64{1024} * 1024;

}  // namespace

ScenarioPickerView::ScenarioPickerView(SessionViewModel& session, HttpClientProtocol& http, QObject* parent)
    : QObject(parent),
      m_session(session),
      m_http(http),
      m_scenarioRows({"name", "detail", "isSelected"}),
      m_personalities({"label", "colorName", "strength", "isSelected"}) {
    connect(&session, &SessionViewModel::statusTextChanged, this, &ScenarioPickerView::canStartChanged);
    updatePersonalities();
}

ScenarioPickerView::~ScenarioPickerView() {
    m_fetchTask.cancel();
}

void ScenarioPickerView::appear() {
    setScenarios({});
    m_selectedDisc = DiscType::unknown;
    updatePersonalities();
    setIsGameMode(false);
    m_fetchError.reset();
    m_isLoading = true;
    Q_EMIT loadingChanged();
    m_fetchTask = CancellableTask::start([self = Self{this}](std::stop_token stop) -> QCoro::Task<void> {
        co_await fetchScenarios(self, std::move(stop));
    });
}

// MARK: - The list

QCoro::Task<void> ScenarioPickerView::fetchScenarios(Self self, std::stop_token stop) {
    // A later opening has a list of its own.
    const auto isOver = [self, stop] { return !self || stop.stop_requested(); };
    if (isOver())
        co_return;
    HttpRequest request{.url = QUrl{self->m_session.restBaseURL() + u"/scenarios"_s, QUrl::StrictMode},
                        .timeout = fetchTimeout,
                        .maxBodyBytes = longestAnswer};
    if (!request.url.isValid()) {
        self->endLoading(u"Invalid server URL"_s);
        co_return;
    }
    const auto token = co_await self->m_session.authToken();
    if (isOver())
        co_return;
    if (token)
        request.headers.emplace_back("Authorization", "Bearer " + token->toUtf8());
    const auto answer = co_await self->m_http.send(std::move(request), stop);
    if (isOver())
        co_return;
    const auto failed = [](const Error& error) { return u"Failed to load: "_s + error.errorDescription(); };
    if (!answer) {
        self->endLoading(failed(answer.error()));
        co_return;
    }
    // Whatever the status: the body of a refusal is no list.
    auto response = ScenariosResponse::decode(answer->body);
    if (!response) {
        self->endLoading(failed(response.error()));
        co_return;
    }
    self->setScenarios(std::move(response->scenarios));
    self->endLoading(std::nullopt);
}

void ScenarioPickerView::endLoading(std::optional<QString> error) {
    m_fetchError = std::move(error);
    m_isLoading = false;
    Q_EMIT loadingChanged();
}

void ScenarioPickerView::setScenarios(std::vector<ScenarioItem> scenarios) {
    m_scenarios = std::move(scenarios);
    m_selectedScenario = m_scenarios.empty() ? std::nullopt : std::optional<std::size_t>{0};
    updateScenarios();
}

void ScenarioPickerView::updateScenarios() {
    std::vector<FixedRowsModel::Row> rows;
    rows.reserve(m_scenarios.size());
    for (const ScenarioItem& scenario : m_scenarios)
        rows.push_back(
            {scenario.name, scenario.company + u" · "_s + scenario.industry, rows.size() == m_selectedScenario});
    m_scenarioRows.assign(rows);
    Q_EMIT canStartChanged();
}

// MARK: - Choices

std::optional<ScenarioItem> ScenarioPickerView::selectedScenario() const {
    return m_selectedScenario ? std::optional{m_scenarios[*m_selectedScenario]} : std::nullopt;
}

void ScenarioPickerView::selectScenario(int row) {
    if (row < 0 || row >= static_cast<int>(m_scenarios.size()))
        return;
    m_selectedScenario = static_cast<std::size_t>(row);
    updateScenarios();
}

void ScenarioPickerView::selectDisc(int row) {
    if (row < 0 || row >= static_cast<int>(discTypeRows.size()))
        return;
    m_selectedDisc = discTypeRows.at(static_cast<std::size_t>(row)).value;
    updatePersonalities();
}

void ScenarioPickerView::updatePersonalities() {
    std::vector<FixedRowsModel::Row> rows;
    for (const DiscTypeRow& row : discTypeRows)
        rows.push_back({label(row.value), colorName(row.color.role), row.color.opacity, row.value == m_selectedDisc});
    m_personalities.assign(rows);
}

void ScenarioPickerView::setIsGameMode(bool isGameMode) {
    if (m_isGameMode == isGameMode)
        return;
    m_isGameMode = isGameMode;
    Q_EMIT gameModeChanged();
}

QString ScenarioPickerView::gameCaption() const {
    return m_isGameMode ? u"Score points for open MEDDIC questions. Closed questions = penalty."_s : QString{};
}

// MARK: - Start

QString ScenarioPickerView::startTitle() const {
    return m_isGameMode ? u"Start Game"_s : u"Start Training"_s;
}

QString ScenarioPickerView::startSymbol() const {
    return m_isGameMode ? u"gamecontroller.fill"_s : u"play.fill"_s;
}

QString ScenarioPickerView::startColorName() const {
    return colorName(m_isGameMode ? ColorRole::orange : ColorRole::cyan);
}

bool ScenarioPickerView::canStart() const {
    return m_selectedScenario && !m_session.isReachingServer();
}

void ScenarioPickerView::startTrain() {
    if (m_session.isReachingServer())
        return;
    const auto scenario = selectedScenario();
    m_session.startSession({.simMode = true,
                            .scenario = scenario ? std::optional{scenario->key} : std::nullopt,
                            .discType = m_selectedDisc,
                            .gameMode = m_isGameMode});
}

}  // namespace corvellan
