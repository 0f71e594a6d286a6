#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "App/Alerts/MessageBoxAlerts.h"
#include "Support/TestLoop.h"

namespace corvellan::test {

class AlertFixture : public testing::Test {
protected:
    /// Who still waits for an answer gets one, and ends.
    ~AlertFixture() override {
        alerts.reset();
        settle();
    }

    struct Answer {
        std::optional<std::size_t> button;
    };

    /// Shows the alert; the answer comes into the result.
    std::shared_ptr<Answer> show(Alert alert) {
        auto answer = std::make_shared<Answer>();
        wait(*alerts, std::move(alert), answer);
        return answer;
    }
    /// Null when there is none.
    static QMessageBox* box() {
        for (QWidget* const widget : QApplication::topLevelWidgets()) {
            auto* const found = qobject_cast<QMessageBox*>(widget);
            if (found && found->isVisible())
                return found;
        }
        return nullptr;
    }
    static QPushButton* button(const QString& text) {
        for (auto* const candidate : box()->findChildren<QPushButton*>())
            if (candidate->text() == text)
                return candidate;
        return nullptr;
    }
    static std::optional<std::size_t> answered(const std::shared_ptr<Answer>& answer) {
        spinUntil([&] { return answer->button.has_value(); });
        return answer->button;
    }

    Alert permissions{.messageText = QStringLiteral("Permissions Required"),
                      .informativeText = QStringLiteral("1. Screen & System <b>Audio</b>\n2. More"),
                      .buttonTitles = {QStringLiteral("Open System Settings"), QStringLiteral("Later")}};
    std::unique_ptr<MessageBoxAlerts> alerts = std::make_unique<MessageBoxAlerts>();

private:
    static QCoro::Task<void> wait(MessageBoxAlerts& shown, Alert alert, std::shared_ptr<Answer> answer) {
        answer->button = co_await shown.runModal(std::move(alert));
    }
};

}  // namespace corvellan::test
