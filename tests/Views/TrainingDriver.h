#pragma once

#include <memory>
#include <QObject>
#include <QString>
#include <QVariantMap>

namespace corvellan::test {

/// Gives QML tests the training screen over a session of fakes, and the hand to change what there is.
class TrainingDriver : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* picker READ picker NOTIFY madeAnew)
    Q_PROPERTY(QObject* theme READ theme NOTIFY madeAnew)

public:
    TrainingDriver();
    ~TrainingDriver() override;

    [[nodiscard]] QObject* picker();
    [[nodiscard]] QObject* theme();

    /// Forgets everything; the server knows three scenarios. Call before the screen of a test is made.
    Q_INVOKABLE void reset();
    /// The server has this many scenarios.
    Q_INVOKABLE void setScenarios(int count);
    Q_INVOKABLE void refuseWithAPage();
    /// Answers are held back, or let go.
    Q_INVOKABLE void holdAnswers(bool isHeld);
    Q_INVOKABLE [[nodiscard]] int requests() const;
    /// The start message that went out last: "simMode", "scenario", "discType", "gameMode". Empty for none.
    Q_INVOKABLE [[nodiscard]] QVariantMap started() const;

Q_SIGNALS:
    void madeAnew();

private:
    struct World;

    std::unique_ptr<World> m_world;
};

}  // namespace corvellan::test
