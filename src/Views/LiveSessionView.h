#pragma once

#include <array>
#include <QAbstractItemModel>
#include <QColor>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <string_view>

#include "Models/EnumTable.h"
#include "Models/Types.h"

namespace corvellan {

class HandoffWindowController;
class SessionViewModel;

/// The layouts of a running session.
enum class SessionTab { full, coach, mini };

struct SessionTabRow {
    SessionTab value;
    std::string_view raw;
    std::string_view icon;
    SessionTab next;
};

/// Under these names the panel knows how large to be.
inline constexpr std::array sessionTabRows{
    SessionTabRow{SessionTab::full, "full", "rectangle.split.2x1", SessionTab::coach},
    SessionTabRow{SessionTab::coach, "coach", "rectangle", SessionTab::mini},
    SessionTabRow{SessionTab::mini, "mini", "minus", SessionTab::full},
};

/// "m:ss". Minutes are not capped and never roll into hours.
///
/// \param seconds not negative.
[[nodiscard]] QString formatTimer(qint64 seconds);

/// View state of what stands round the coaching overlay in a running session: the layout, the timer, and the
/// transcript with the levels of both sides. Main thread.
class LiveSessionView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// "full", "coach" or "mini". The next session opens in the one that was used last.
    Q_PROPERTY(QString sessionTab READ sessionTabName NOTIFY sessionTabChanged)
    Q_PROPERTY(QString sessionTabIcon READ sessionTabIcon NOTIFY sessionTabChanged)
    /// The layout that a press leads to.
    Q_PROPERTY(QString nextSessionTab READ nextSessionTabName NOTIFY sessionTabChanged)
    Q_PROPERTY(double fontScale READ fontScale NOTIFY fontScaleChanged)
    Q_PROPERTY(QString fontScaleIcon READ fontScaleIcon NOTIFY fontScaleChanged)

    Q_PROPERTY(QString timerText READ timerText NOTIFY timerChanged)

    /// "D", "I", "S" or "C"; empty while the buyer's type is unknown.
    Q_PROPERTY(QString discLetter READ discLetter NOTIFY buyerChanged)

    // The transcript panel. Levels are 0 to 1.
    Q_PROPERTY(float audioLevel READ audioLevel NOTIFY audioLevelChanged)
    Q_PROPERTY(bool isMicHeard READ isMicHeard NOTIFY audioLevelChanged)
    Q_PROPERTY(QColor micLevelColor READ micLevelColor NOTIFY audioLevelChanged)
    Q_PROPERTY(QString micLevelText READ micLevelText NOTIFY audioLevelChanged)
    Q_PROPERTY(bool showsSystem READ showsSystem NOTIFY systemChanged)
    Q_PROPERTY(float systemAudioLevel READ systemAudioLevel NOTIFY systemChanged)
    Q_PROPERTY(bool isSystemHeard READ isSystemHeard NOTIFY systemChanged)
    Q_PROPERTY(QColor systemLevelColor READ systemLevelColor NOTIFY systemChanged)
    Q_PROPERTY(QString systemLevelText READ systemLevelText NOTIFY systemChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusChanged)
    Q_PROPERTY(QColor statusColor READ statusColor NOTIFY statusChanged)
    Q_PROPERTY(bool isTtsPlaying READ isTtsPlaying NOTIFY speechChanged)
    Q_PROPERTY(bool isTtsMuted READ isTtsMuted NOTIFY speechChanged)
    Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY stageChanged)
    Q_PROPERTY(QAbstractItemModel* transcriptLines READ transcriptLines CONSTANT)
    Q_PROPERTY(QString counterpartStreamingText READ counterpartStreamingText NOTIFY streamingChanged)

public:
    /// Both outlive the object.
    LiveSessionView(SessionViewModel& session, HandoffWindowController& handoffWindowController,
                    QObject* parent = nullptr);

    [[nodiscard]] SessionTab sessionTab() const { return m_sessionTab; }
    [[nodiscard]] QString sessionTabName() const;
    [[nodiscard]] QString sessionTabIcon() const;
    [[nodiscard]] QString nextSessionTabName() const;
    [[nodiscard]] double fontScale() const;
    [[nodiscard]] QString fontScaleIcon() const;
    [[nodiscard]] QString timerText() const;
    [[nodiscard]] QString discLetter() const;
    [[nodiscard]] float audioLevel() const;
    [[nodiscard]] bool isMicHeard() const;
    [[nodiscard]] QColor micLevelColor() const;
    [[nodiscard]] QString micLevelText() const;
    [[nodiscard]] bool showsSystem() const;
    [[nodiscard]] float systemAudioLevel() const;
    [[nodiscard]] bool isSystemHeard() const;
    [[nodiscard]] QColor systemLevelColor() const;
    [[nodiscard]] QString systemLevelText() const;
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QColor statusColor() const;
    [[nodiscard]] bool isTtsPlaying() const;
    [[nodiscard]] bool isTtsMuted() const;
    [[nodiscard]] bool isWaiting() const;
    [[nodiscard]] QAbstractItemModel* transcriptLines() const;
    [[nodiscard]] QString counterpartStreamingText() const;

    /// 1.0, 1.5, 2.0 and round again; from any other value to 1.0.
    Q_INVOKABLE void cycleFontScale();
    /// Full, coach, mini and round again. The panel takes the size of the next one.
    Q_INVOKABLE void cycleSessionTab();
    Q_INVOKABLE void openHandoff();
    Q_INVOKABLE void toggleTtsMute();
    /// The colour of the tag of a transcript line, by the number of its source.
    Q_INVOKABLE [[nodiscard]] QColor tagColor(int source) const;

    /// Gives the panel, which begins every call at the size of the full layout, that of the one in use.
    void applyLayout();

    // The rules, pure.

    [[nodiscard]] static ColorRole levelColor(float level, ColorRole base);
    /// By the status' literal words.
    [[nodiscard]] static ColorRole statusColor(const QString& status);

Q_SIGNALS:
    void sessionTabChanged();
    void fontScaleChanged();
    void timerChanged();
    void buyerChanged();
    void audioLevelChanged();
    void systemChanged();
    void streamingChanged();
    void statusChanged();
    void speechChanged();
    void stageChanged();

private:
    SessionViewModel& m_session;
    HandoffWindowController& m_handoffWindowController;
    SessionTab m_sessionTab = SessionTab::full;
};

}  // namespace corvellan
