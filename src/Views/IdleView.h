#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QString>

#include "Models/Protocol.h"

namespace corvellan {

class SessionViewModel;

/// View state of the window between calls. Main thread.
class IdleView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    Q_PROPERTY(QString productName READ productName CONSTANT)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(bool canStart READ canStart NOTIFY statusTextChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    /// Empty while no call has ended.
    Q_PROPERTY(QString lastCallText READ lastCallText NOTIFY lastCallTextChanged)
    Q_PROPERTY(QString serverText READ serverText NOTIFY serverTextChanged)

public:
    explicit IdleView(SessionViewModel& session, QObject* parent = nullptr);

    [[nodiscard]] static QString productName();
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] bool canStart() const;
    [[nodiscard]] QString errorMessage() const;
    [[nodiscard]] QString lastCallText() const;
    [[nodiscard]] QString serverText() const;

    /// Nothing happens while it can't start: a screen reader presses disabled buttons too.
    Q_INVOKABLE void startCoaching();

    /// "Last call: 2m 3s, 4/6". Minutes never roll into hours.
    [[nodiscard]] static QString lastCall(const SummaryPayload& summary);
    /// "Local server, 127.0.0.1:3001" or "Server: coach.example.com". Text that is no address stands as it is.
    [[nodiscard]] static QString server(const QString& url, bool isLocal);

Q_SIGNALS:
    void statusTextChanged();
    void errorMessageChanged();
    void lastCallTextChanged();
    void serverTextChanged();

private:
    SessionViewModel& m_session;
};

}  // namespace corvellan
