#pragma once

#include <memory>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include "Views/SessionHistoryView.h"
#include "Views/Theme.h"

namespace corvellan::test {

/// Gives QML tests the history over a real store, and the hand to change what is in it.
class HistoryDriver : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* history READ history NOTIFY madeAnew)
    Q_PROPERTY(QObject* theme READ theme NOTIFY madeAnew)

public:
    HistoryDriver();
    ~HistoryDriver() override;

    [[nodiscard]] QObject* history();
    [[nodiscard]] QObject* theme();

    /// Forgets everything; call before the screens of a test are made.
    Q_INVOKABLE void reset();
    /// Stores a call of so many hours ago. `more` may hold "score", "train", "audience", "scenario", "callId",
    /// "rating", "evidence", "points" and "transcript".
    Q_INVOKABLE void keep(const QString& company, double hoursAgo, const QVariantMap& more = {});
    /// Stores so many calls, half an hour apart.
    Q_INVOKABLE void keepMany(int count);
    /// A call ends: its summary comes, then its record.
    Q_INVOKABLE void endCall(const QString& company);
    Q_INVOKABLE void holdSync();
    Q_INVOKABLE void releaseSync();
    Q_INVOKABLE void setDark(bool isDark);
    /// Waits until nothing is under way.
    Q_INVOKABLE void quieten();

    Q_INVOKABLE [[nodiscard]] int syncsAsked() const;
    /// The body of the last report to the server.
    Q_INVOKABLE [[nodiscard]] QString lastReport();
    Q_INVOKABLE [[nodiscard]] QString clipboard() const;
    /// The subject of the last mail that was begun.
    Q_INVOKABLE [[nodiscard]] QString mailed() const;
    Q_INVOKABLE [[nodiscard]] QVariantMap spoken(QObject* item) const;
    Q_INVOKABLE bool pressThroughAccessibility(QObject* item);

Q_SIGNALS:
    void madeAnew();

private:
    struct World;
    std::unique_ptr<World> m_world;
};

}  // namespace corvellan::test
