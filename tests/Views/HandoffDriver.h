#pragma once

#include <memory>
#include <QObject>
#include <QStringList>

#include "Support/FakeDesktop.h"
#include "Views/HandoffWindowView.h"
#include "Views/Theme.h"

namespace corvellan::test {

/// Gives QML tests the view state of a handoff's window.
class HandoffDriver : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* view READ view NOTIFY madeAnew)
    Q_PROPERTY(QObject* theme READ theme CONSTANT)

public:
    HandoffDriver();
    ~HandoffDriver() override;

    [[nodiscard]] QObject* view() const { return m_view.get(); }
    [[nodiscard]] QObject* theme() { return &m_theme; }

    /// A handoff with this note and nothing else.
    Q_INVOKABLE void setNote(const QString& note);
    /// With all that there can be.
    Q_INVOKABLE void setWhole(const QString& note);
    /// As `setNote`, in a window that can't be closed from inside.
    Q_INVOKABLE void setUnclosable(const QString& note);
    Q_INVOKABLE void refuseToOpen(const QString& sentence);

    Q_INVOKABLE [[nodiscard]] QStringList opened();
    Q_INVOKABLE [[nodiscard]] int closings() const { return m_closings; }

Q_SIGNALS:
    void madeAnew();

private:
    void make(HandoffResponse handoff, bool isClosable = true);

    CallLog m_log;
    FakeWebBrowser m_browser{m_log};
    Theme m_theme;
    std::unique_ptr<HandoffWindowView> m_view;
    int m_closings = 0;
};

}  // namespace corvellan::test
