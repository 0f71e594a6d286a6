#pragma once

#include <QColor>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <vector>

#include "FixedRowsModel.h"
#include "Models/Types.h"

namespace corvellan {

class HandoffWindowController;
class SessionViewModel;

/// View state of the coaching overlay: a pure projection of the session into finished texts, colours
/// and rows. It owns no session data. Main thread.
class CoachingOverlayView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the host of the overlay")

    /// The factor of every size that scales.
    Q_PROPERTY(double fs READ fs NOTIFY fsChanged)

    // The tip. An empty label means no chip; an empty hint, none.
    Q_PROPERTY(QString tipLabel READ tipLabel NOTIFY tipKindChanged)
    Q_PROPERTY(QColor tipColor READ tipColor NOTIFY tipKindChanged)
    Q_PROPERTY(QColor tipBackground READ tipBackground NOTIFY tipKindChanged)
    Q_PROPERTY(bool isUrgent READ isUrgent NOTIFY tipKindChanged)
    Q_PROPERTY(bool hasMessage READ hasMessage NOTIFY messageChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(QString productHint READ productHint NOTIFY productHintChanged)

    // The state of the call.
    Q_PROPERTY(QString modeLabel READ modeLabel NOTIFY modeChanged)
    Q_PROPERTY(QColor modeColor READ modeColor NOTIFY modeChanged)
    Q_PROPERTY(bool showsMeddic READ showsMeddic NOTIFY modeChanged)
    Q_PROPERTY(QAbstractItemModel* stages READ stages CONSTANT)
    Q_PROPERTY(QString stageName READ stageName NOTIFY stageChanged)
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY phaseChanged)
    Q_PROPERTY(QString scoreText READ scoreText NOTIFY scoreChanged)
    Q_PROPERTY(QColor scoreColor READ scoreColor NOTIFY scoreChanged)
    Q_PROPERTY(QAbstractItemModel* scoreBars READ scoreBars CONSTANT)
    Q_PROPERTY(QAbstractItemModel* checklist READ checklist CONSTANT)
    Q_PROPERTY(QString buyerLabel READ buyerLabel NOTIFY buyerChanged)
    Q_PROPERTY(QColor buyerColor READ buyerColor NOTIFY buyerChanged)
    /// "(Medium)"; empty for a buyer whose type is unknown.
    Q_PROPERTY(QString buyerConfidence READ buyerConfidence NOTIFY buyerChanged)
    Q_PROPERTY(QString moodEmoji READ moodEmoji NOTIFY moodChanged)
    Q_PROPERTY(QString moodLabel READ moodLabel NOTIFY moodChanged)
    Q_PROPERTY(QColor moodColor READ moodColor NOTIFY moodChanged)

    // The company row. Nothing of it shows without a company.
    Q_PROPERTY(bool hasCompany READ hasCompany NOTIFY companyChanged)
    Q_PROPERTY(QString companyName READ companyName NOTIFY companyChanged)
    Q_PROPERTY(bool hasHandoff READ hasHandoff NOTIFY companyChanged)
    /// A press of the row does something.
    Q_PROPERTY(bool isCompanyRowActive READ isCompanyRowActive NOTIFY companyChanged)
    Q_PROPERTY(QString companySymbol READ companySymbol NOTIFY companyChanged)
    Q_PROPERTY(QColor companySymbolColor READ companySymbolColor NOTIFY companyChanged)
    /// Empty when there is no brief to fold.
    Q_PROPERTY(QString chevronSymbol READ chevronSymbol NOTIFY companyChanged)
    Q_PROPERTY(bool isBriefShown READ isBriefShown NOTIFY companyChanged)
    Q_PROPERTY(QString briefText READ briefText NOTIFY briefTextChanged)

    Q_PROPERTY(bool isSpeaking READ isSpeaking NOTIFY speakingChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)

public:
    /// Both outlive the object.
    CoachingOverlayView(SessionViewModel& session, HandoffWindowController& handoffWindowController,
                        QObject* parent = nullptr);

    [[nodiscard]] double fs() const;
    [[nodiscard]] QString tipLabel() const;
    [[nodiscard]] QColor tipColor() const;
    [[nodiscard]] QColor tipBackground() const;
    [[nodiscard]] bool isUrgent() const;
    [[nodiscard]] bool hasMessage() const;
    /// The tip, or the session's status while there is none.
    [[nodiscard]] QString message() const;
    [[nodiscard]] QString productHint() const;
    [[nodiscard]] QString modeLabel() const;
    [[nodiscard]] QColor modeColor() const;
    [[nodiscard]] bool showsMeddic() const;
    [[nodiscard]] FixedRowsModel* stages() { return &m_stages; }
    [[nodiscard]] QString stageName() const;
    [[nodiscard]] QString phaseText() const;
    [[nodiscard]] QString scoreText() const;
    [[nodiscard]] QColor scoreColor() const;
    [[nodiscard]] FixedRowsModel* scoreBars() { return &m_scoreBars; }
    [[nodiscard]] FixedRowsModel* checklist() { return &m_checklist; }
    [[nodiscard]] QString buyerLabel() const;
    [[nodiscard]] QColor buyerColor() const;
    [[nodiscard]] QString buyerConfidence() const;
    [[nodiscard]] QString moodEmoji() const;
    [[nodiscard]] QString moodLabel() const;
    [[nodiscard]] QColor moodColor() const;
    [[nodiscard]] bool hasCompany() const;
    [[nodiscard]] QString companyName() const;
    [[nodiscard]] bool hasHandoff() const;
    [[nodiscard]] bool isCompanyRowActive() const;
    [[nodiscard]] QString companySymbol() const;
    [[nodiscard]] QColor companySymbolColor() const;
    [[nodiscard]] QString chevronSymbol() const;
    [[nodiscard]] bool isBriefShown() const;
    [[nodiscard]] QString briefText() const { return m_briefText; }
    [[nodiscard]] bool isSpeaking() const;
    [[nodiscard]] QString errorMessage() const;

    /// The company brief is unfolded. Kept for as long as the view lives, over sessions too.
    [[nodiscard]] bool showBrief() const { return m_showBrief; }

    Q_INVOKABLE void endSession();
    /// Opens the handoff notes; without them folds the brief, if there is one.
    Q_INVOKABLE void pressCompanyRow();

    // The rules, pure.

    /// Without tags, with at most one blank line in a row, trimmed. Nothing else is cleaned.
    [[nodiscard]] static QString cleanBrief(const QString& text);
    /// "needs_analysis" becomes "Needs Analysis".
    [[nodiscard]] static QString prettyPhase(const QString& phase);
    [[nodiscard]] static QString stageAbbrev(CallStage stage);
    [[nodiscard]] static Tint modeBadgeColor(AudienceType mode);
    [[nodiscard]] static Tint meddicScoreColor(int score);
    /// One tint a bar, lit from the left.
    [[nodiscard]] static std::vector<Tint> scoreBar(int filled, int total);
    [[nodiscard]] static QString discLabel(DiscType type);
    [[nodiscard]] static Tint discColor(DiscType type);
    [[nodiscard]] static Tint sentimentColor(CustomerSentiment sentiment);
    [[nodiscard]] static QString coachingTypeLabel(CoachingType type);
    [[nodiscard]] static Tint coachingTypeColor(CoachingType type);

Q_SIGNALS:
    void fsChanged();
    void tipKindChanged();
    void messageChanged();
    void productHintChanged();
    void modeChanged();
    void stageChanged();
    void phaseChanged();
    void scoreChanged();
    void buyerChanged();
    void moodChanged();
    void companyChanged();
    void briefTextChanged();
    void speakingChanged();
    void errorMessageChanged();

private:
    void updateStages();
    void updateScore();
    void updateChecklist();
    void updateBriefText();

    SessionViewModel& m_session;
    bool m_showBrief = false;
    HandoffWindowController& m_handoffWindowController;
    FixedRowsModel m_stages;
    FixedRowsModel m_scoreBars;
    FixedRowsModel m_checklist;
    QString m_briefText;
};

}  // namespace corvellan
