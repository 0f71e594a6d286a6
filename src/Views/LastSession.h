#pragma once

#include <memory>
#include <optional>
#include <QObject>
#include <QQmlEngine>
#include <QString>

#include "Base/DateText.h"
#include "Services/Protocols/SessionStoreProtocol.h"

namespace corvellan {

class SessionViewModel;

/// The newest stored session, as the home screen's card tells of it. It follows the session's record store, whichever
/// that is. Colours are told by name, as `Theme::named` has them. Main thread.
class LastSession : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the home screen's state")

    /// Without one, all texts are empty.
    Q_PROPERTY(bool isThere READ isThere NOTIFY changed)
    /// "4/6"; empty for a cold call.
    Q_PROPERTY(QString score READ score NOTIFY changed)
    Q_PROPERTY(QString scoreColor READ scoreColor NOTIFY changed)
    Q_PROPERTY(double scoreOpacity READ scoreOpacity NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(bool wasTraining READ wasTraining NOTIFY changed)
    Q_PROPERTY(QString caption READ caption NOTIFY changed)
    /// All of it but the title, for screen readers.
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed)

public:
    /// \param session outlives the object.
    LastSession(SessionViewModel& session, DateStyle dates, QObject* parent = nullptr);

    [[nodiscard]] bool isThere() const { return m_entry.has_value(); }
    [[nodiscard]] QString score() const;
    [[nodiscard]] QString scoreColor() const;
    [[nodiscard]] double scoreOpacity() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] bool wasTraining() const;
    [[nodiscard]] QString caption() const;
    [[nodiscard]] QString spoken() const;

Q_SIGNALS:
    void changed();

private:
    void watchRecords();
    void follow(const SessionStoreProtocol::Index& index);

    SessionViewModel& m_session;
    DateStyle m_dates;
    std::optional<SessionIndexEntry> m_entry;
    std::shared_ptr<void> m_recordWatch;
};

}  // namespace corvellan
