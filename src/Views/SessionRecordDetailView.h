#pragma once

#include <functional>
#include <QObject>
#include <QQmlEngine>
#include <QStringList>

#include "Base/Clock.h"
#include "Base/DateText.h"
#include "Base/Tasks.h"
#include "FixedRowsModel.h"
#include "Models/SessionRecord.h"
#include "StoredTranscriptModel.h"

namespace corvellan {

class SessionViewModel;
class WebBrowser;

/// View state of the summary of one finished session, straight after a call or any time later. Colours are told by
/// name, as `Theme::named` has them. Main thread.
class SessionRecordDetailView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Part of a view state")

    /// Empty for none.
    Q_PROPERTY(QString companyName READ companyName NOTIFY recordChanged)
    Q_PROPERTY(bool isTraining READ isTraining NOTIFY recordChanged)
    /// The audience; empty for a direct sale.
    Q_PROPERTY(QString badge READ badge NOTIFY recordChanged)
    Q_PROPERTY(QString badgeColor READ badgeColor NOTIFY recordChanged)
    /// The call has just ended, and the user's verdict is asked for.
    Q_PROPERTY(bool isFresh READ isFresh NOTIFY feedbackChanged)
    /// What copying or sharing has come to; empty until then.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)

    Q_PROPERTY(bool showsFeedback READ showsFeedback NOTIFY feedbackChanged)
    Q_PROPERTY(QString feedbackTitle READ feedbackTitle NOTIFY feedbackChanged)
    Q_PROPERTY(bool canRate READ canRate NOTIFY feedbackChanged)
    Q_PROPERTY(QString feedbackNote READ feedbackNote WRITE setFeedbackNote NOTIFY feedbackNoteChanged)
    Q_PROPERTY(QString resultSymbol READ resultSymbol NOTIFY feedbackChanged)
    Q_PROPERTY(QString resultWord READ resultWord NOTIFY feedbackChanged)
    Q_PROPERTY(QString resultColor READ resultColor NOTIFY feedbackChanged)
    /// The verdict that the record holds, which the user only reads.
    Q_PROPERTY(bool showsStoredFeedback READ showsStoredFeedback NOTIFY feedbackChanged)
    Q_PROPERTY(QString storedSymbol READ storedSymbol NOTIFY feedbackChanged)
    Q_PROPERTY(QString storedWord READ storedWord NOTIFY feedbackChanged)
    Q_PROPERTY(QString storedColor READ storedColor NOTIFY feedbackChanged)

    Q_PROPERTY(bool showsMeddic READ showsMeddic NOTIFY recordChanged)
    Q_PROPERTY(QString scoreText READ scoreText NOTIFY recordChanged)
    Q_PROPERTY(QString scoreColor READ scoreColor NOTIFY recordChanged)
    Q_PROPERTY(double scoreOpacity READ scoreOpacity NOTIFY recordChanged)
    /// Rows of "letter", "isMet", "label", "evidence" and "spoken".
    Q_PROPERTY(QAbstractItemModel* criteria READ criteria CONSTANT)

    Q_PROPERTY(QString durationText READ durationText NOTIFY recordChanged)
    Q_PROPERTY(QString turnsText READ turnsText NOTIFY recordChanged)
    Q_PROPERTY(QString discText READ discText NOTIFY recordChanged)
    Q_PROPERTY(QString dateText READ dateText NOTIFY recordChanged)
    Q_PROPERTY(QStringList coachingPoints READ coachingPoints NOTIFY recordChanged)
    Q_PROPERTY(bool hasTranscript READ hasTranscript NOTIFY recordChanged)
    Q_PROPERTY(QAbstractItemModel* transcript READ transcript CONSTANT)

public:
    /// What it needs besides; all of it outlives the object.
    struct Parts {
        const Clock& clock;
        WebBrowser& browser;  ///< Which also finds the mail program.
        DateStyle dates = DateStyle::system();
        QString reportFolder;  ///< Where reports are saved.
    };

    /// \param viewModel null for a summary without feedback. It outlives the object.
    /// \param onBack closes the screen.
    SessionRecordDetailView(SessionRecord record, SessionViewModel* viewModel, std::function<void()> onBack,
                            Parts parts, QObject* parent = nullptr);
    ~SessionRecordDetailView() override;

    [[nodiscard]] const SessionRecord& record() const { return m_record; }
    /// As it has been stored meanwhile.
    void setRecord(SessionRecord record);

    [[nodiscard]] QString companyName() const { return m_record.companyName.value_or(QString{}); }
    [[nodiscard]] bool isTraining() const { return m_record.wasTrainMode; }
    [[nodiscard]] QString badge() const;
    [[nodiscard]] QString badgeColor() const;
    [[nodiscard]] bool isFresh() const;
    /// The call is known to the server, and not a day old.
    [[nodiscard]] bool canEditOutcome() const;
    [[nodiscard]] QString notice() const { return m_notice; }

    [[nodiscard]] bool showsFeedback() const;
    [[nodiscard]] QString feedbackTitle() const;
    [[nodiscard]] bool canRate() const;
    [[nodiscard]] QString feedbackNote() const;
    void setFeedbackNote(const QString& note);
    [[nodiscard]] QString resultSymbol() const;
    [[nodiscard]] QString resultWord() const;
    [[nodiscard]] QString resultColor() const;
    [[nodiscard]] bool showsStoredFeedback() const;
    [[nodiscard]] QString storedSymbol() const;
    [[nodiscard]] QString storedWord() const;
    [[nodiscard]] QString storedColor() const;

    [[nodiscard]] bool showsMeddic() const;
    [[nodiscard]] QString scoreText() const;
    [[nodiscard]] QString scoreColor() const;
    [[nodiscard]] double scoreOpacity() const;
    [[nodiscard]] FixedRowsModel* criteria() { return &m_criteria; }

    [[nodiscard]] QString durationText() const { return m_record.formattedDuration(); }
    [[nodiscard]] QString turnsText() const { return QString::number(m_record.turns); }
    [[nodiscard]] QString discText() const;
    [[nodiscard]] QString dateText() const;
    [[nodiscard]] QStringList coachingPoints() const { return m_record.coachingPoints; }
    [[nodiscard]] bool hasTranscript() const { return !m_record.transcript.isEmpty(); }
    [[nodiscard]] StoredTranscriptModel* transcript() { return &m_transcript; }

    Q_INVOKABLE void back();
    Q_INVOKABLE void rateHelpful() { rate(helpful); }
    Q_INVOKABLE void rateNotHelpful() { rate(notHelpful); }
    Q_INVOKABLE void copyTranscript();
    Q_INVOKABLE void copySessionSummary();
    // There is no share sheet: what it offers most is a mail, and a file for everything else.
    /// Opens the mail program with the report as the text of a new mail.
    Q_INVOKABLE void shareByMail();
    Q_INVOKABLE void shareAsFile();

    [[nodiscard]] QString sessionShareText() const;

Q_SIGNALS:
    void recordChanged();
    void feedbackChanged();
    void feedbackNoteChanged();
    void noticeChanged();

private:
    static constexpr int helpful = 1;
    static constexpr int notHelpful = -1;

    void rate(int rating);
    void say(const QString& notice);
    void updateRows();
    [[nodiscard]] std::optional<std::int64_t> givenRating() const;

    SessionRecord m_record;
    SessionViewModel* m_viewModel;
    std::function<void()> m_onBack;
    Parts m_parts;
    QString m_notice;
    FixedRowsModel m_criteria;
    StoredTranscriptModel m_transcript;
    TaskSlot m_mailTask;
};

}  // namespace corvellan
