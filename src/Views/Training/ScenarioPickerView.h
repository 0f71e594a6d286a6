#pragma once

#include <optional>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QString>
#include <vector>

#include "Base/Tasks.h"
#include "Models/Briefing.h"
#include "Models/Types.h"
#include "Views/RowsModel.h"

namespace corvellan {

class HttpClientProtocol;
class SessionViewModel;

/// View state of the training screen: which buyer the user is about to practise with. Main thread.
class ScenarioPickerView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// The list is on its way. Nothing else shows meanwhile.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY loadingChanged)
    /// Empty for no trouble.
    Q_PROPERTY(QString fetchError READ fetchErrorText NOTIFY loadingChanged)
    /// Rows of "name", "detail" and "isSelected".
    Q_PROPERTY(QAbstractItemModel* scenarios READ scenarioRows CONSTANT)
    /// The server has answered, and knows no scenario.
    Q_PROPERTY(bool hasNoScenarios READ hasNoScenarios NOTIFY loadingChanged)
    /// Rows of "label", "colorName" (one of the theme's), "strength" (its opacity) and "isSelected".
    Q_PROPERTY(QAbstractItemModel* personalities READ personalities CONSTANT)
    Q_PROPERTY(bool isGameMode READ isGameMode WRITE setIsGameMode NOTIFY gameModeChanged)
    /// Empty while the game is off.
    Q_PROPERTY(QString gameCaption READ gameCaption NOTIFY gameModeChanged)
    Q_PROPERTY(QString startTitle READ startTitle NOTIFY gameModeChanged)
    Q_PROPERTY(QString startSymbol READ startSymbol NOTIFY gameModeChanged)
    Q_PROPERTY(QString startColorName READ startColorName NOTIFY gameModeChanged)
    /// A scenario is selected, and no call is on its way to the server.
    Q_PROPERTY(bool canStart READ canStart NOTIFY canStartChanged)

public:
    /// Both outlive the object.
    ScenarioPickerView(SessionViewModel& session, HttpClientProtocol& http, QObject* parent = nullptr);
    /// A fetch that is under way ends by itself and changes nothing.
    ~ScenarioPickerView() override;

    /// The screen has opened: everything is as at first, and the list is fetched.
    Q_INVOKABLE void appear();

    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] const std::optional<QString>& fetchError() const { return m_fetchError; }
    [[nodiscard]] QString fetchErrorText() const { return m_fetchError.value_or(QString{}); }
    [[nodiscard]] const std::vector<ScenarioItem>& scenarios() const { return m_scenarios; }
    [[nodiscard]] RowsModel* scenarioRows() { return &m_scenarioRows; }
    [[nodiscard]] bool hasNoScenarios() const { return !m_isLoading && !m_fetchError && m_scenarios.empty(); }
    [[nodiscard]] RowsModel* personalities() { return &m_personalities; }

    [[nodiscard]] std::optional<ScenarioItem> selectedScenario() const;
    /// \param row of `scenarios`; one that is none changes nothing.
    Q_INVOKABLE void selectScenario(int row);
    [[nodiscard]] DiscType selectedDisc() const { return m_selectedDisc; }
    /// \param row of `personalities`; one that is none changes nothing.
    Q_INVOKABLE void selectDisc(int row);
    [[nodiscard]] bool isGameMode() const { return m_isGameMode; }
    void setIsGameMode(bool isGameMode);

    [[nodiscard]] QString gameCaption() const;
    [[nodiscard]] QString startTitle() const;
    [[nodiscard]] QString startSymbol() const;
    [[nodiscard]] QString startColorName() const;
    [[nodiscard]] bool canStart() const;
    /// Starts a training session with what is selected.
    Q_INVOKABLE void startTrain();

Q_SIGNALS:
    void loadingChanged();
    void gameModeChanged();
    void canStartChanged();

private:
    using Self = QPointer<ScenarioPickerView>;

    static QCoro::Task<void> fetchScenarios(Self self, std::stop_token stop);
    void endLoading(std::optional<QString> error);
    void setScenarios(std::vector<ScenarioItem> scenarios);
    void updateScenarios();
    void updatePersonalities();

    SessionViewModel& m_session;
    HttpClientProtocol& m_http;
    std::vector<ScenarioItem> m_scenarios;
    std::optional<std::size_t> m_selectedScenario;  ///< Its place in the list.
    DiscType m_selectedDisc = DiscType::unknown;
    bool m_isGameMode = false;
    bool m_isLoading = true;
    std::optional<QString> m_fetchError;
    RowsModel m_scenarioRows;
    RowsModel m_personalities;
    TaskSlot m_fetchTask;
};

}  // namespace corvellan
